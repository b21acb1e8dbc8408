#include "undo/joining_items.h"

#include <channellist-access/db_access.h>

#include "database/query.h"

namespace channel_lists {
namespace {

// By the lists' uuids: others may remake the lists until the edit has its lock.
constexpr char const* kBegin[] = {
    "CREATE TEMP TABLE JoiningItem (List, Service, Hidden, Visible, Selectable, Original,"
    " OriginalList)",
    "CREATE INDEX temp.JoiningItemIndex ON JoiningItem (List, Service)",
    "CREATE TEMP TRIGGER JoiningItemTrigger AFTER INSERT ON main.FavoriteItem"
    " WHEN EXISTS (SELECT 1 FROM JoiningItem WHERE Service = NEW.ServiceId"
    " AND List = (SELECT Uuid FROM main.FavoriteList WHERE Pid = NEW.FavoriteId)) BEGIN"
    " UPDATE FavoriteItem SET (isDeleted, Visible, Selectable, OriginalFavoriteId) ="
    " (SELECT Hidden, Visible, Selectable,"
    " COALESCE((SELECT Pid FROM main.FavoriteList WHERE Uuid = OriginalList), Original)"
    " FROM JoiningItem WHERE Service = NEW.ServiceId"
    " AND List = (SELECT Uuid FROM main.FavoriteList WHERE Pid = NEW.FavoriteId))"
    " WHERE Id = NEW.Id; END"};
constexpr char kEnd[] =
    "DROP TRIGGER IF EXISTS temp.JoiningItemTrigger; DROP TABLE IF EXISTS temp.JoiningItem";

std::string literal(std::optional<std::int64_t> const& number) {
    return number ? std::to_string(*number) : "NULL";
}

}  // namespace

JoiningItems::JoiningItems() {
    for (char const* sql : kBegin)
        Query(db, sql).next();
}

JoiningItems::~JoiningItems() { sqlite3_exec(db, kEnd, nullptr, nullptr, nullptr); }

void JoiningItems::add(std::string const& listUuid, StoredItem const& item) {
    Query(db, "INSERT INTO temp.JoiningItem VALUES (?, " + std::to_string(item.service) + ", " +
                  literal(item.hidden) + ", " + literal(item.visible) + ", " +
                  literal(item.selectable) + ", " + literal(item.original) + ", ?)")
        .bind(listUuid)
        .bind(item.originalList)
        .next();
}

}  // namespace channel_lists
