/// make-channel-database [--force] CHANNELS.CONF DATABASE
///
/// Makes a channel database from a VDR channel list. Lines that cannot be read are named on
/// standard error and skipped.
///
/// Exit codes: 0 made, 1 not made (the reason is on standard error), 2 wrong arguments.

#include <channel-database/channel_list.h>
#include <channel-database/database_file.h>

#include <iostream>

namespace {

using namespace channel_database;

struct Arguments {
    bool force = false;
    std::string list;
    std::string database;
};

bool readArguments(int argc, char** argv, Arguments& arguments) {
    std::vector<std::string> paths;
    for (int i = 1; i < argc; ++i) {
        std::string const argument = argv[i];
        if (argument == "--force")
            arguments.force = true;
        else if (argument.rfind("--", 0) == 0)
            return false;
        else
            paths.push_back(argument);
    }
    if (paths.size() != 2)
        return false;
    arguments.list = paths[0];
    arguments.database = paths[1];
    return true;
}

void reportRejectedLines(ChannelsConf const& list, std::string const& path) {
    for (RejectedLine const& rejected : list.rejected)
        std::cerr << path << ":" << rejected.line << ": skipped: " << rejected.reason
                  << (rejected.text.empty() ? "" : ": ") << rejected.text << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    if (!readArguments(argc, argv, arguments)) {
        std::cerr << "usage: make-channel-database [--force] CHANNELS.CONF DATABASE\n";
        return 2;
    }
    try {
        ChannelsConf const list = readChannelList(arguments.list);
        reportRejectedLines(list, arguments.list);
        std::size_t const services = makeDatabaseFile(list, arguments.database, arguments.force);
        std::cout << arguments.database << ": " << services << " channels, " << list.groups.size()
                  << " groups, " << list.rejected.size() << " lines skipped\n";
        return 0;
    } catch (std::exception const& error) {
        std::cerr << "make-channel-database: " << error.what() << "\n";
        return 1;
    }
}
