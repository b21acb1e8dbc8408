#include <channel-database/channel_list.h>
#include <channel-database/dvbv5.h>
#include <channel-database/enigma2.h>
#include <channel-database/m3u.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "enigma2_archive.h"
#include "limited_text.h"

namespace channel_database {
namespace {

constexpr std::size_t kMostRejected = 20;  // of a list without any channel

struct Format {
    bool (*fits)(std::string_view text);
    ChannelsConf (*parse)(std::istream& text);
};

constexpr Format kFormats[] = {
    {isLamedb, parseLamedb}, {isBouquet, parseBouquet},           {isM3u, parseM3u},
    {isDvbv5, parseDvbv5},   {isChannelsConf, parseChannelsConf},
};

std::string readText(std::string const& path) {
    if (path == "-")
        return limitedText(std::cin, path);
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
    return limitedText(file, path);
}

}  // namespace

ChannelsConf readChannelList(std::string const& path) {
    if (std::error_code ignored; std::filesystem::is_directory(path, ignored))
        return readEnigma2Folder(path);
    std::istringstream text(readText(path));
    if (isArchive(text.str()))
        return readEnigma2Archive(text.str(), path);
    for (Format const& format : kFormats) {
        if (!format.fits(text.str()))
            continue;
        ChannelsConf list = format.parse(text);
        if (!list.channels.empty() || list.rejected.size() <= kMostRejected)
            return list;
    }
    throw std::runtime_error(path +
                             ": this is no channel list of VDR, Enigma2 or libdvbv5, and no M3U");
}

}  // namespace channel_database
