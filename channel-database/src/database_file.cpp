#include <channel-database/database_file.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace channel_database {

ChannelsConf readChannelsConf(std::string const& path) {
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
    ChannelsConf list = parseChannelsConf(file);
    if (file.bad())
        throw std::runtime_error("cannot read " + path + " to its end");
    return list;
}

void makeDatabaseFile(ChannelsConf const& list, std::string const& path, bool replace,
                      ImportProgress const& progress) {
    if (!replace && std::filesystem::exists(path))
        throw std::runtime_error(path + " exists; --force replaces it");
    if (list.channels.empty())
        throw std::runtime_error("the list holds no channel");
    std::string const unfinished = path + ".part";
    std::filesystem::remove(unfinished);
    try {
        {
            ChannelDatabase database(unfinished);
            importChannels(database, list, progress);
        }
        std::filesystem::rename(unfinished, path);
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove(unfinished, ignored);
        throw;
    }
}

}  // namespace channel_database
