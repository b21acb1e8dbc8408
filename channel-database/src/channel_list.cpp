#include <channel-database/channel_list.h>
#include <channel-database/enigma2.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace channel_database {
namespace {

constexpr std::size_t kMostRejected = 20;  // of a list without any channel

struct Format {
    bool (*fits)(std::string_view text);
    ChannelsConf (*parse)(std::istream& text);
};

constexpr Format kFormats[] = {
    {isLamedb, parseLamedb},
    {isBouquet, parseBouquet},
    {isChannelsConf, parseChannelsConf},
};

std::string readText(std::string const& path) {
    std::ostringstream text;
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
        if (!file)
            throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
    }
    std::istream& in = path == "-" ? std::cin : file;
    text << in.rdbuf();
    if (in.bad())
        throw std::runtime_error("cannot read " + path + " to its end");
    return text.str();
}

}  // namespace

ChannelsConf readChannelList(std::string const& path) {
    if (std::error_code ignored; std::filesystem::is_directory(path, ignored))
        return readEnigma2Folder(path);
    std::istringstream text(readText(path));
    for (Format const& format : kFormats) {
        if (!format.fits(text.str()))
            continue;
        ChannelsConf list = format.parse(text);
        if (!list.channels.empty() || list.rejected.size() <= kMostRejected)
            return list;
    }
    throw std::runtime_error(path + ": this is no channel list of VDR or Enigma2");
}

}  // namespace channel_database
