#include "services/item_counts.h"

#include <channellist-access/db_access.h>

#include "database/query.h"

namespace channel_lists {

std::map<unsigned int, std::int64_t> itemCounts() {
    std::map<unsigned int, std::int64_t> counts;
    Query rows(db, "SELECT FavoriteId, count(*) FROM FavoriteItem GROUP BY FavoriteId");
    while (rows.next())
        counts[static_cast<unsigned int>(rows.number(0))] = rows.number(1);
    return counts;
}

}  // namespace channel_lists
