// IP channels in the lists of media players.
#include <channel-database/m3u.h>
#include <channel-database/utf8.h>

#include <algorithm>
#include <map>
#include <utility>

#include "free_numbers.h"
#include "line_text.h"

namespace channel_database {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kHeader = "#EXTM3U";
constexpr std::string_view kEntry = "#EXTINF:";
constexpr std::string_view kGroup = "#EXTGRP:";

bool begins(std::string_view text, std::string_view word) {
    return text.substr(0, word.size()) == word;
}

/// What an entry says of the address on a line behind it.
struct Entry {
    std::map<std::string, std::string> attributes;
    std::string name;

    std::string of(char const* attribute) const {
        auto const found = attributes.find(attribute);
        return found == attributes.end() ? std::string() : found->second;
    }
};

/// `-1 tvg-chno="5" group-title="Info",News, at five`
Entry parseEntry(std::string_view text) {
    Entry entry;
    while (!text.empty() && text[0] != ',') {
        auto const end = text.find_first_of(" \t,=");
        std::string const word(text.substr(0, end));
        text.remove_prefix(std::min(text.size(), word.size()));
        if (begins(text, "=\"")) {
            std::string_view const behind = text.substr(2);
            std::string_view const value = behind.substr(0, behind.find('"'));
            entry.attributes[word] = std::string(value);
            text.remove_prefix(std::min(text.size(), value.size() + 3));
        } else if (!text.empty() && text[0] != ',') {
            text.remove_prefix(1);
        }
    }
    entry.name = std::string(trimmed(text.substr(std::min<std::size_t>(1, text.size()))));
    return entry;
}

/// "https:" and so on; a path of this machine is no address.
bool isAddress(std::string_view text) {
    auto const colon = text.find("://");
    return colon != std::string_view::npos && colon > 0 &&
           std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon), [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      c == '+' || c == '-' || c == '.';
           });
}

struct M3uReader {
    void read(std::string_view line, int number) {
        if (begins(line, kEntry))
            entry = parseEntry(line.substr(kEntry.size()));
        else if (begins(line, kGroup))
            group = std::string(trimmed(line.substr(kGroup.size())));
        else if (!line.empty() && line[0] != '#')
            add(line, number);
    }

    void add(std::string_view address, int line) {
        Entry const given = std::exchange(entry, Entry());
        std::string const titled = given.of("group-title");
        std::string const inGroup = std::exchange(group, std::string());
        if (!isAddress(address)) {
            list.rejected.push_back({line, "no network address", std::string(address)});
            return;
        }
        Channel channel;
        channel.source = "I";
        channel.url = std::string(address);
        channel.name =
            !given.name.empty() ? given.name : std::string(trimmed(given.of("tvg-name")));
        if (channel.name.empty())
            channel.name = channel.url;
        channel.videoPid = given.of("radio") == "true" ? "0" : "8191";
        channel.line = line;
        channel.group = groupOf(titled.empty() ? inGroup : titled);
        std::string const wanted = given.of("tvg-chno");
        std::string_view rest = wanted;
        channel.mark = leadingNumber(rest).value_or(0);
        if (!rest.empty())
            channel.mark = 0;
        list.channels.push_back(std::move(channel));
    }

    int groupOf(std::string const& name) {
        if (name.empty())
            return -1;
        auto const [known, isNew] = groups.emplace(name, static_cast<int>(list.groups.size()));
        if (isNew)
            list.groups.push_back(name);
        return known->second;
    }

    ChannelsConf list;
    Entry entry;
    std::string group;
    std::map<std::string, int> groups;
};

std::string attribute(char const* name, std::string value) {
    std::replace(value.begin(), value.end(), '"', '\'');
    return std::string(" ") + name + "=\"" + value + "\"";
}

}  // namespace

bool isM3u(std::string_view beginning) {
    if (begins(beginning, kByteOrderMark))
        beginning.remove_prefix(kByteOrderMark.size());
    return begins(beginning, kHeader) || begins(beginning, kEntry);
}

ChannelsConf parseM3u(std::istream& text) {
    M3uReader reader;
    int number = 0;
    for (std::string line; std::getline(text, line);) {
        if (number == 0 && begins(line, kByteOrderMark))
            line.erase(0, kByteOrderMark.size());
        if (!isUtf8(line))
            line = latin1ToUtf8(line);
        reader.read(trimmed(line), ++number);
    }
    giveNumbers(reader.list.channels);
    return std::move(reader.list);
}

std::string formatM3u(Channel const& channel, std::string const& group) {
    std::string text(kEntry);
    text += "-1" + attribute("tvg-chno", std::to_string(channel.number)) +
            attribute("tvg-name", channel.name);
    if (!group.empty())
        text += attribute("group-title", group);
    if (channel.isRadio())
        text += attribute("radio", "true");
    return text + "," + channel.name + "\n" + channel.url + "\n";
}

}  // namespace channel_database
