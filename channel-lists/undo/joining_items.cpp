#include "undo/joining_items.h"

#include <channellist-access/db_access.h>

#include "database/query.h"

namespace channel_lists {
namespace {

constexpr char const* kBegin[] = {
    "CREATE TEMP TABLE JoiningItem (List, Service, Hidden, Visible, Selectable, Original)",
    "CREATE TEMP TRIGGER JoiningItemTrigger AFTER INSERT ON main.FavoriteItem"
    " WHEN EXISTS (SELECT 1 FROM JoiningItem WHERE List = NEW.FavoriteId"
    " AND Service = NEW.ServiceId) BEGIN"
    " UPDATE FavoriteItem SET (isDeleted, Visible, Selectable, OriginalFavoriteId) ="
    " (SELECT Hidden, Visible, Selectable, Original FROM JoiningItem WHERE List = NEW.FavoriteId"
    " AND Service = NEW.ServiceId) WHERE Id = NEW.Id; END"};
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

void JoiningItems::add(unsigned int listPid, StoredItem const& item) {
    Query(db, "INSERT INTO temp.JoiningItem VALUES (" + std::to_string(listPid) + ", " +
                  std::to_string(item.service) + ", " + literal(item.hidden) + ", " +
                  literal(item.visible) + ", " + literal(item.selectable) + ", " +
                  literal(item.original) + ")")
        .next();
}

}  // namespace channel_lists
