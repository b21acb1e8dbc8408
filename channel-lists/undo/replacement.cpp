#include "undo/replacement.h"

#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>
#include <sys/stat.h>

#include <filesystem>

#include "database/content_digest.h"
#include "database/query.h"
#include "database/session.h"
#include "database/waiting.h"
#include "failure.h"
#include "kept/undo_store.h"

namespace channel_lists {
namespace {

struct Count {
    char const* what;
    char const* sql;  // `old` is what the database holds, `main` the copy
};

// A list is changed when its name or its entries are; services are told by their uuid.
constexpr Count kCounts[] = {
    {"lists added",
     "SELECT count(*) FROM main.FavoriteList WHERE Uuid NOT IN (SELECT Uuid FROM old.FavoriteList"
     " WHERE Uuid NOT NULL)"},
    {"lists removed",
     "SELECT count(*) FROM old.FavoriteList WHERE Uuid NOT IN (SELECT Uuid FROM main.FavoriteList"
     " WHERE Uuid NOT NULL)"},
    {"lists changed",
     "WITH now(Uuid, Name, Service, Number, Deleted) AS (SELECT l.Uuid, l.Name, s.Uuid, ChannelNum,"
     " isDeleted FROM main.FavoriteList l LEFT JOIN main.FavoriteItem i ON i.FavoriteId = l.Pid"
     " LEFT JOIN main.Service s ON s.Pid = i.ServiceId),"
     " before AS (SELECT l.Uuid, l.Name, s.Uuid, ChannelNum, isDeleted FROM old.FavoriteList l"
     " LEFT JOIN old.FavoriteItem i ON i.FavoriteId = l.Pid"
     " LEFT JOIN old.Service s ON s.Pid = i.ServiceId)"
     " SELECT count(DISTINCT Uuid) FROM (SELECT * FROM (SELECT * FROM now EXCEPT SELECT * FROM"
     " before) UNION SELECT * FROM (SELECT * FROM before EXCEPT SELECT * FROM now))"
     " WHERE Uuid IN (SELECT Uuid FROM main.FavoriteList)"
     " AND Uuid IN (SELECT Uuid FROM old.FavoriteList)"},
    {"services added",
     "SELECT count(*) FROM main.Service WHERE Uuid NOT IN (SELECT Uuid FROM old.Service WHERE Uuid"
     " NOT NULL)"},
    {"services removed",
     "SELECT count(*) FROM old.Service WHERE Uuid NOT IN (SELECT Uuid FROM main.Service WHERE Uuid"
     " NOT NULL)"},
    {"services changed",
     "SELECT count(*) FROM (SELECT * FROM main.Service EXCEPT SELECT * FROM old.Service)"
     " WHERE Uuid IN (SELECT Uuid FROM old.Service)"},
};

// What the database holds may be what is broken: a copy is restored all the same.
std::string changesOf(std::string const& database) {
    std::string changes;
    try {
        Query attach(db, "ATTACH ? AS old");
        attach.bind(database).next();
        for (Count const& count : kCounts) {
            changes += (changes.empty() ? "" : ", ") + std::to_string(queryNumber(db, count.sql)) +
                       " " + count.what;
        }
    } catch (Failure const& failure) {
        changes = "What " + database + " holds now cannot be compared: " + failure.what();
    }
    sqlite3_exec(db, "DETACH old", nullptr, nullptr, nullptr);
    return changes;
}

// Throws Failure that names the file unless it is sound, and the library could work on it.
void examineCopy(std::string const& file) {
    std::string damage;
    Query check(db, "PRAGMA integrity_check(1)");
    while (check.next())
        damage += check.text(0) == "ok" ? "" : check.text(0) + "\n";
    if (!damage.empty())
        throw Failure(
            file + " is damaged, and nothing is written: " + damage.substr(0, damage.size() - 1));
    dbaccess::initViews(db);
    for (char const* needed :
         {"SELECT * FROM FavoriteItemView",
          "SELECT Id, OriginalFavoriteId, isDeleted FROM FavoriteItem",
          "SELECT Pid, Uuid, Name, Creator, Attributes FROM FavoriteList",
          "SELECT NetworkId, BATId, UpdateTag, MaxChannelNumber FROM FavoriteList",
          "SELECT FavTag, FavTag2, FavTag3, FavTag4, bissKey FROM Service",
          "SELECT ServiceId, Lcn, FavoriteId FROM Lcn"}) {
        try {
            Query const query(db, needed);
        } catch (Failure const&) {
            throw Failure(file + " is no whole channel database, and nothing is written: " +
                          sqlite3_errmsg(db));
        }
    }
}

}  // namespace

std::string bringBack(std::string const& file, std::string const& database,
                      Replacement const& replacement) {
    struct stat found;
    bool const exists = lstat(database.c_str(), &found) == 0;
    if (exists)
        channel_database::checkReplaceable(database);
    if (std::error_code ignored; std::filesystem::equivalent(database, file, ignored))
        throw Failure(file + " is the database itself");
    Session session(file);
    session.continueOnCopy();  // what is examined is what is written
    examineCopy(file);
    tellWaitsFor(database);
    std::string changes;
    auto const lookAtIt = [&] {
        if (replacement.check)
            replacement.check();
        changes = exists ? changesOf(database) : std::string();
    };
    if (replacement.dryRun) {
        lookAtIt();
        return changes;
    }
    std::string const content = contentDigest(db);
    UndoStore undo(database, exists && !replacement.command.empty());
    if (exists)
        channel_database::replaceContent(db, database, [&] {
            lookAtIt();
            undo.keepDatabase(replacement.command, content, replacement.undoes,
                              replacement.alongside);
        });
    else
        channel_database::writeNewFile(db, database);
    undo.confirm(content);
    return changes;
}

}  // namespace channel_lists
