#include "lists/stored_items.h"

#include <channellist-access/db_access.h>

#include "database/query.h"

namespace channel_lists {

std::vector<StoredItem> storedItems(std::string const& listUuid) {
    // The uuids as C strings, which is how the library delivers them.
    Query rows(db,
               "SELECT ServiceId, ChannelNum, isDeleted, Visible, Selectable, OriginalFavoriteId,"
               " (SELECT printf('%s', Uuid) FROM Service WHERE Pid = ServiceId),"
               " (SELECT printf('%s', Uuid) FROM FavoriteList WHERE Pid = OriginalFavoriteId)"
               " FROM FavoriteItem WHERE FavoriteId = (SELECT Pid FROM FavoriteList WHERE Uuid = ?)"
               " ORDER BY Id");
    rows.bind(listUuid);
    std::vector<StoredItem> items;
    while (rows.next()) {
        StoredItem& item = items.emplace_back();
        item.service = rows.number(0);
        int column = 0;
        for (std::optional<std::int64_t>* const member :
             {&item.number, &item.hidden, &item.visible, &item.selectable, &item.original})
            if (rows.isInteger(++column))
                *member = rows.number(column);
        item.uuid = rows.text(++column);
        item.originalList = rows.text(++column);
    }
    return items;
}

}  // namespace channel_lists
