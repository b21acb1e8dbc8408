// channellist driver UUID UUID
#include <channellist-access/db_access.h>

#include "commands/commands.h"
#include "database/session.h"
#include "failure.h"

namespace tool {
namespace {

int run(std::string const& database, std::vector<std::string> uuids) {
    Session const session(database);
    std::string name = "channellist";
    std::vector<char*> arguments = {name.data()};
    for (std::string& uuid : uuids)
        arguments.push_back(uuid.data());
    int const count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    return dbaccess::main0(count, arguments.data()) == 0 ? kSuccess : kFailure;
}

}  // namespace

void addDriverCommand(CommandLine& line) {
    auto uuids = std::make_shared<std::vector<std::string>>();
    line.add("driver", "The library's own driver: prints the lists, reads the services of two")
        .arguments("UUID", *uuids, 0, 2, "uuids of up to two lists")
        .footer(
            "Examples:\n"
            "  channellist driver fav1 all\n"
            "  channellist driver fav1 all --trace all")
        .action([uuids](std::string const& database) { return run(database, *uuids); });
}

}  // namespace tool
