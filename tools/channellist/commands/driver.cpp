// channellist driver UUID UUID
#include <channellist-access/db_access.h>

#include "commands/command.h"

namespace tool {
namespace {

int run(const std::string& database, std::vector<std::string> uuids) {
    const Session session(database);
    std::string name = "channellist";
    std::vector<char*> arguments = {name.data()};
    for (std::string& uuid : uuids) {
        arguments.push_back(uuid.data());
    }
    const int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    return dbaccess::main0(count, arguments.data()) == 0 ? kSuccess : kFailure;
}

}  // namespace

void addDriverCommand(CLI::App& app, CommandLine& line) {
    CLI::App* command = app.add_subcommand(
        "driver", "The library's own driver: prints the lists, reads the services of two");
    auto uuids = std::make_shared<std::vector<std::string>>();
    command->add_option("UUID", *uuids, "uuids of up to two lists")->expected(0, 2);
    command->footer(
        "Examples:\n"
        "  channellist driver fav1 all\n"
        "  channellist driver fav1 all --trace all");
    command->callback(
        [&line, uuids] { line.run = [&line, uuids] { return run(line.database, *uuids); }; });
}

}  // namespace tool
