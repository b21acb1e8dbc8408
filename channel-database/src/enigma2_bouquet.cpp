// Bouquets of an Enigma2 receiver, and the folder that holds them beside lamedb.
#include <channel-database/enigma2.h>
#include <channel-database/utf8.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <stdexcept>

#include "enigma2_ids.h"
#include "line_text.h"

namespace channel_database {
namespace {

constexpr std::string_view kName = "#NAME";
constexpr std::string_view kService = "#SERVICE";
constexpr std::string_view kDescription = "#DESCRIPTION";

// By the namespace, which is the orbital position with a checksum behind.
std::string sourceOf(std::uint32_t place) {
    std::uint32_t const position = place >> 16;
    if (position == kCablePlace)
        return "C";
    if (position == kTerrestrialPlace)
        return "T";
    return orbitalSource(orbitalPosition(static_cast<int>(position)));
}

// What stands behind the tenth colon.
std::string_view nameIn(std::string_view text) {
    for (int colons = 0; colons < 10; ++colons) {
        auto const colon = text.find(':');
        if (colon == std::string_view::npos)
            return {};
        text.remove_prefix(colon + 1);
    }
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(':')));
    return text;
}

// "1:0:19:283D:3FB:1:C02CE5:0:0:0:Name"; nothing for a marker, a directory or a stream.
std::optional<Channel> referenceOf(std::string_view text) {
    auto const numbers = hexadecimalFields(text, 7);
    if (!numbers || (*numbers)[0] != 1 || (*numbers)[1] != 0)
        return std::nullopt;
    Channel channel;
    channel.isReference = true;
    channel.serviceId = static_cast<int>((*numbers)[3] & 0xFFFF);
    channel.transportStreamId = static_cast<int>((*numbers)[4] & 0xFFFF);
    channel.networkId = static_cast<int>((*numbers)[5] & 0xFFFF);
    channel.source = sourceOf((*numbers)[6]);
    channel.place = (*numbers)[6];
    std::string const given = shownText(nameIn(text));
    channel.name = given.empty() ? tripletText(channel) : given;
    channel.videoPid = isRadioType(static_cast<int>((*numbers)[2])) ? "0" : "8191";
    return channel;
}

std::string_view behind(std::string_view line, std::string_view word) {
    line.remove_prefix(word.size());
    if (!line.empty() && line[0] == ':')
        line.remove_prefix(1);
    return trimmed(line);
}

struct BouquetReader {
    void read(std::string_view line, int number) {
        if (line.substr(0, kName.size()) == kName) {
            std::string const name = shownText(behind(line, kName));
            list.groups.push_back(name.empty() ? "Bouquet" : name);
        } else if (line.substr(0, kService.size()) == kService) {
            addService(behind(line, kService), number);
        } else if (line.substr(0, kDescription.size()) == kDescription && isNamed) {
            list.channels.back().name = shownText(behind(line, kDescription));
        }
    }

    void addService(std::string_view text, int number) {
        auto channel = referenceOf(text);
        isNamed = channel.has_value();
        bool const isMarker = text.substr(0, 5) == "1:64:";
        if (!channel && !isMarker)
            list.rejected.push_back({number, "no DVB service", std::string(text)});
        if (!channel)
            return;
        channel->group = static_cast<int>(list.groups.size()) - 1;
        channel->line = number;
        channel->number = static_cast<int>(list.channels.size()) + 1;
        list.channels.push_back(std::move(*channel));
    }

    ChannelsConf list;
    bool isNamed = false;  // whether a description names the last channel
};

// The files that bouquets.tv names, in its order.
std::vector<std::string> bouquetFiles(std::string const& folder) {
    std::vector<std::string> files;
    for (char const* index : {"/bouquets.tv", "/bouquets.radio"}) {
        std::ifstream in(folder + index);
        for (std::string line; std::getline(in, line);) {
            auto const begin = line.find("FROM BOUQUET \"");
            auto const end = begin == std::string::npos ? begin : line.find('"', begin + 14);
            if (end != std::string::npos)
                files.push_back(folder + "/" + line.substr(begin + 14, end - begin - 14));
        }
    }
    return files;
}

// The services of lamedb by their triplets.
class KnownServices {
  public:
    explicit KnownServices(std::vector<Channel> const& channels) {
        for (Channel const& channel : channels)
            services_.emplace(tripletText(channel), channel);
    }
    // The one of the same place, or else source, else any; null without one.
    Channel const* find(Channel const& reference) const {
        auto const [first, last] = services_.equal_range(tripletText(reference));
        Channel const* ofSource = nullptr;
        for (auto service = first; service != last; ++service) {
            if (service->second.place == reference.place)
                return &service->second;
            if (ofSource == nullptr && service->second.source == reference.source)
                ofSource = &service->second;
        }
        return ofSource != nullptr || first == last ? ofSource : &first->second;
    }

  private:
    std::multimap<std::string, Channel> services_;
};

void append(ChannelsConf bouquet, std::string const& file, KnownServices const& services,
            ChannelsConf& list) {
    auto const group = static_cast<int>(list.groups.size());
    list.groups.push_back(bouquet.groups.empty() ? file : bouquet.groups[0]);
    for (Channel& reference : bouquet.channels) {
        Channel channel = reference;
        if (Channel const* const known = services.find(reference))
            channel = *known;
        channel.isReference = true;
        channel.group = group;
        channel.line = reference.line;
        channel.number = static_cast<int>(list.channels.size()) + 1;
        list.channels.push_back(std::move(channel));
    }
    for (RejectedLine& rejected : bouquet.rejected)
        list.rejected.push_back({rejected.line, rejected.reason, rejected.text, file});
}

}  // namespace

bool isBouquet(std::string_view beginning) {
    return beginning.substr(0, kName.size()) == kName ||
           beginning.substr(0, kService.size()) == kService;
}

ChannelsConf parseBouquet(std::istream& text) {
    BouquetReader reader;
    int number = 0;
    for (std::string line; std::getline(text, line);)
        reader.read(trimmed(isUtf8(line) ? line : latin1ToUtf8(line)), ++number);
    return std::move(reader.list);
}

ChannelsConf readEnigma2Folder(std::string const& folder) {
    std::vector<std::string> const files = bouquetFiles(folder);
    std::ifstream lamedb(folder + "/lamedb");
    if (!lamedb && files.empty())
        throw std::runtime_error(folder + " is a folder without lamedb or bouquets.tv");
    ChannelsConf list;
    if (lamedb)
        list = parseLamedb(lamedb);
    KnownServices const services(list.channels);
    for (std::string const& file : files) {
        std::ifstream in(file);
        if (in)
            append(parseBouquet(in), file, services, list);
        else
            list.rejected.push_back({0, "bouquets.tv names a file that cannot be read", file});
    }
    return list;
}

std::string formatBouquetName(std::string const& name) { return "#NAME " + name; }

std::string formatBouquetEntry(Channel const& channel) {
    char text[96];
    std::snprintf(
        text, sizeof text,
        "#SERVICE 1:0:%X:%X:%X:%X:%X:0:0:0:", static_cast<unsigned>(serviceType(channel)),
        static_cast<unsigned>(channel.serviceId), static_cast<unsigned>(channel.transportStreamId),
        static_cast<unsigned>(channel.networkId), channel.place.value_or(enigma2Place(channel)));
    return text;
}

}  // namespace channel_database
