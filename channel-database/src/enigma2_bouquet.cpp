// Bouquets of an Enigma2 receiver.
#include <channel-database/enigma2.h>
#include <channel-database/utf8.h>

#include <algorithm>
#include <cstdio>

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

// With "%3a" for a colon, which would end the field.
std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        auto const code = text[0] == '%' ? hexadecimalNumber(text.substr(1, 2)) : std::nullopt;
        bool const isCode = code && text.size() > 2 && *code >= 0x20;
        result += isCode ? static_cast<char>(*code) : text[0];
        text.remove_prefix(isCode ? 3 : 1);
    }
    return result;
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

// "4097:0:1:0:0:0:0:0:0:0:http%3a//example.org/news:News": what has an address is a stream.
std::optional<Channel> streamOf(std::string_view text) {
    std::string_view const rest = nameIn(text);
    std::string const address = unescaped(rest.substr(0, rest.find(':')));
    auto const numbers = hexadecimalFields(text, 3);
    if (!numbers || address.find("://") == std::string::npos)
        return std::nullopt;
    Channel channel;
    channel.source = "I";
    channel.url = address;
    auto const colon = rest.find(':');
    std::string const name =
        colon == std::string_view::npos ? std::string() : shownText(rest.substr(colon + 1));
    channel.name = name.empty() ? address : name;
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
        bool const isMarker = text.substr(0, 5) == "1:64:";
        auto channel = streamOf(text);
        if (!channel)
            channel = referenceOf(text);
        isNamed = channel.has_value();
        if (isMarker)
            list.rejected.push_back(
                {number, "a marker, which is no channel", shownText(nameIn(text))});
        else if (!channel)
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
