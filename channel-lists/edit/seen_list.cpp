#include "edit/seen_list.h"

#include <channellist-access/db_access.h>

#include "database/query.h"
#include "failure.h"
#include "lists/reserved_numbers.h"

namespace channel_lists {

SeenList seeList(List const& list) {
    Query same(db, "SELECT count(*) > 1 FROM FavoriteList WHERE Uuid = ?");
    same.bind(list.uuid).next();
    if (same.number(0) != 0)
        throw Failure("another list has the uuid of " + displayName(list) +
                      ", and an edit could reach either; \"channellist check\" tells more");
    Entries stored = readEntries(list.uuid);
    if (!stored.complete) {
        throw Failure("not all services of " + displayName(list) +
                      " could be read, and an edit would lose the others; \"channellist check\" "
                      "tells why");
    }
    SeenList seen;
    seen.list = list;
    seen.entries = std::move(stored.entries);
    seen.reserved = reservedNumbers(list);
    for (List const& fav : allLists())
        if (list.favIndex == 0 && fav.favIndex != 0)
            seen.favReserved.emplace(fav.uuid, reservedNumbers(fav, Tell::Nothing));
    seen.reached = takeSnapshot(list);
    for (ListEntries& each : seen.reached) {
        each.items = storedItems(each.uuid);
        if (each.uuid == list.uuid && each.items.size() > seen.entries.size())
            seen.undelivered = each.items.size() - seen.entries.size();
        seen.reachedStates.emplace(each.uuid, storedState(each.uuid));
    }
    seen.stored = seen.reachedStates[list.uuid];
    return seen;
}

std::string storedState(std::string const& listUuid) {
    Query items(db,
                "SELECT quote(ServiceId), quote(ChannelNum), quote(isDeleted),"
                " quote((SELECT Uuid FROM Service WHERE Pid = ServiceId))"
                " FROM FavoriteItem WHERE FavoriteId ="
                " (SELECT Pid FROM FavoriteList WHERE Uuid = ?) ORDER BY 1, 2, 3, 4");
    items.bind(listUuid);
    std::string state;
    while (items.next()) {
        for (int column = 0; column < items.columns(); ++column)
            state += items.text(column) + ' ';
        state += '\n';
    }
    return state;
}

}  // namespace channel_lists
