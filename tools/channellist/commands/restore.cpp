// channellist restore FILE
#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>
#include <sys/stat.h>

#include <filesystem>
#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"

namespace tool {
namespace {

struct Options {
    std::string file;
    bool dryRun = false;
};

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
void tellChanges(std::string const& database) {
    try {
        Query attach(db, "ATTACH ? AS old");
        attach.bind(database).next();
        std::string separator;
        for (Count const& count : kCounts) {
            std::cout << separator << queryNumber(db, count.sql) << " " << count.what;
            separator = ", ";
        }
        std::cout << "\n";
    } catch (Failure const& failure) {
        std::cout << "What " << database << " holds now cannot be compared: " << failure.what()
                  << "\n";
    }
    sqlite3_exec(db, "DETACH old", nullptr, nullptr, nullptr);
}

int run(std::string const& database, Options const& options) {
    struct stat file;
    bool const exists = lstat(database.c_str(), &file) == 0;
    if (exists)
        channel_database::checkReplaceable(database);
    if (std::error_code ignored; std::filesystem::equivalent(database, options.file, ignored))
        throw Failure(options.file + " is the database itself");
    Session const session(options.file);
    if (exists)
        tellChanges(database);
    if (options.dryRun) {
        std::cout << "Dry run: nothing is written.\n";
        return kSuccess;
    }
    (exists ? channel_database::replaceContent : channel_database::writeNewFile)(db, database);
    std::cout << "Written, and flushed to the disk: " << database << " holds what " << options.file
              << " holds.\n";
    return kSuccess;
}

}  // namespace

void addRestoreCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("restore", "Brings back the content of a backup")
        .argument("FILE", options->file, "a copy that \"backup\" made")
        .flag("-n,--dry-run", options->dryRun, "tell what would change, and write nothing")
        .footer(
            "The database keeps its file, owner and mode; its content changes as a whole or not\n"
            "at all. A database that another process writes to is waited for, up to ten seconds.\n"
            "\nExamples:\n"
            "  channellist restore before-the-scan.db --dry-run\n"
            "  channellist restore before-the-scan.db")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
