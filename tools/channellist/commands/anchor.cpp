// channellist anchor
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

int run(std::string const& database, bool json) {
    Session const session(database);
    std::string uuid;
    int const code = dbaccess::getAstraAnchorService(uuid);
    if (json)
        printJson({{"uuid", code == 0 ? Json(uuid) : Json(nullptr)}});
    else if (code == 0)
        std::cout << displayText(uuid) << "\n";
    if (code != 0)
        throw Failure("no list of Astra 19.2E holds an anchor service");
    return kSuccess;
}

}  // namespace

void addAnchorCommand(CommandLine& line) {
    auto json = std::make_shared<bool>();
    line.add("anchor", "The uuid of the anchor service of the Astra 19.2E list")
        .json(*json)
        .footer(
            "The operator's list comes before the standard one. The anchor is the first service "
            "there\n"
            "that is not deleted and is received on satellite 4 between 12600750 and 12606750 "
            "kHz.\n"
            "Examples:\n"
            "  channellist anchor\n"
            "  channellist anchor --trace 4000")
        .action([json](std::string const& database) { return run(database, *json); });
}

}  // namespace tool
