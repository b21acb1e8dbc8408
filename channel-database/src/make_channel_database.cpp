/// make-channel-database [--force] CHANNELS.CONF DATABASE
///
/// Makes a channel database from a VDR channel list. Lines that cannot be read are named on
/// standard error and skipped.
///
/// Exit codes: 0 made, 1 not made (the reason is on standard error), 2 wrong arguments.

#include <channel-database/import.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
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
        const std::string argument = argv[i];
        if (argument == "--force") {
            arguments.force = true;
        } else if (argument.rfind("--", 0) == 0) {
            return false;
        } else {
            paths.push_back(argument);
        }
    }
    if (paths.size() != 2) {
        return false;
    }
    arguments.list = paths[0];
    arguments.database = paths[1];
    return true;
}

ChannelsConf readList(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
    }
    ChannelsConf list = parseChannelsConf(file);
    if (file.bad()) {
        throw std::runtime_error("cannot read " + path + " to its end");
    }
    for (const RejectedLine& rejected : list.rejected) {
        std::cerr << path << ":" << rejected.line << ": skipped: " << rejected.reason << "\n";
    }
    if (list.channels.empty()) {
        throw std::runtime_error(path + " holds no channel");
    }
    return list;
}

/// Writes beside the target and renames at the end, so that a failure leaves no half database and
/// an old one as it was.
void makeDatabase(const ChannelsConf& list, const std::string& path) {
    const std::string unfinished = path + ".part";
    std::filesystem::remove(unfinished);
    try {
        {
            ChannelDatabase database(unfinished);
            importChannels(database, list);
        }
        std::filesystem::rename(unfinished, path);
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove(unfinished, ignored);
        throw;
    }
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    if (!readArguments(argc, argv, arguments)) {
        std::cerr << "usage: make-channel-database [--force] CHANNELS.CONF DATABASE\n";
        return 2;
    }
    try {
        if (!arguments.force && std::filesystem::exists(arguments.database)) {
            throw std::runtime_error(arguments.database + " exists; --force replaces it");
        }
        const ChannelsConf list = readList(arguments.list);
        makeDatabase(list, arguments.database);
        std::cout << arguments.database << ": " << list.channels.size() << " channels, "
                  << list.groups.size() << " groups, " << list.rejected.size()
                  << " lines skipped\n";
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "make-channel-database: " << error.what() << "\n";
        return 1;
    }
}
