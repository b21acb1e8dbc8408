#include "services/item_counts.h"

#include <channellist-access/db_access.h>

#include "database/query.h"

namespace channel_lists {

std::map<unsigned int, ItemCount> itemCounts() {
    std::map<unsigned int, ItemCount> counts;
    Query rows(db,
               "SELECT FavoriteId, count(*), count(CASE WHEN isDeleted <> 0 THEN 1 END)"
               " FROM FavoriteItem GROUP BY FavoriteId");
    while (rows.next())
        counts[static_cast<unsigned int>(rows.number(0))] = {rows.number(1), rows.number(2)};
    return counts;
}

}  // namespace channel_lists
