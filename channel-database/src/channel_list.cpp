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
#include <vector>

namespace channel_database {
namespace {

constexpr std::size_t kLargestList = 64U << 20U;
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
    std::ostringstream text;
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
        if (!file)
            throw std::runtime_error("cannot read " + path + ": " + std::strerror(errno));
    }
    std::istream& in = path == "-" ? std::cin : file;
    // Memory is no place for what never ends.
    std::vector<char> part(1U << 16U);
    for (std::size_t size = 0; in; size += static_cast<std::size_t>(in.gcount())) {
        if (size > kLargestList)
            throw std::runtime_error(path + ": larger than 64 MiB, as no channel list is");
        in.read(part.data(), static_cast<std::streamsize>(part.size()));
        text.write(part.data(), in.gcount());
    }
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
    throw std::runtime_error(path +
                             ": this is no channel list of VDR, Enigma2 or libdvbv5, and no M3U");
}

}  // namespace channel_database
