// channellist scramble
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "text/json_text.h"

namespace tool {
namespace {

int run(std::string const& database, bool json) {
    Session const session(database);
    int exists = 0;
    if (dbaccess::checkAstraScrambleService(exists) != 0)
        throw Failure("no list of Astra 19.2E holds an anchor service, so none is looked at");
    if (json) {
        printJson({{"scrambled", exists != 0}});
    } else {
        std::cout << (exists != 0 ? "yes: the list of Astra 19.2E holds a scrambled service\n"
                                  : "no: the list of Astra 19.2E holds no scrambled service\n");
    }
    return kSuccess;
}

}  // namespace

void addScrambleCommand(CommandLine& line) {
    auto json = std::make_shared<bool>();
    line.add("scramble", "Whether the Astra 19.2E list with the anchor holds a scrambled service")
        .json(*json)
        .footer(
            "Examples:\n"
            "  channellist scramble\n"
            "  channellist scramble --json | jq .scrambled")
        .action([json](std::string const& database) { return run(database, *json); });
}

}  // namespace tool
