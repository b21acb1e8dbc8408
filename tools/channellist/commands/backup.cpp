// channellist backup FILE
#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "text/display_text.h"

namespace tool {
namespace {

// One read transaction: others may write meanwhile, and the copy shows none of it.
int run(std::string const& database, std::string const& file) {
    Session const session(database);
    Query(db, "BEGIN").next();
    auto const services = queryNumber(db, "SELECT count(*) FROM Service");
    auto const lists = queryNumber(db, "SELECT count(*) FROM FavoriteList");
    channel_database::writeNewFile(db, file);
    Query(db, "COMMIT").next();
    std::cout << displayText(file) << ": " << lists << " lists, " << services << " services of "
              << displayText(database) << "\n";
    return kSuccess;
}

}  // namespace

void addBackupCommand(CommandLine& line) {
    auto file = std::make_shared<std::string>();
    line.add("backup", "Copies the database to a new file, while others use it")
        .argument("FILE", *file, "the copy; an existing file is never replaced")
        .footer(
            "The copy is one state of the database, and appears whole.\n\n"
            "Examples:\n"
            "  channellist backup before-the-scan.db")
        .action([file](std::string const& database) { return run(database, *file); });
}

}  // namespace tool
