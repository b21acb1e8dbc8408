// Whole channel lists: groups, numbers and comments around the channel lines.
#include <channel-database/channels_conf.h>
#include <channel-database/utf8.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "line_text.h"

namespace channel_database {
namespace {

constexpr std::string_view kOwnComment = "#channellist ";
constexpr std::string_view kHidden = " hidden ";

/// The number at the beginning of "5 hidden ..."; nothing when the text begins otherwise.
std::optional<int> takeHidden(std::string_view& text) {
    std::string_view rest = text;
    auto const number = leadingNumber(rest);
    if (!number || rest.substr(0, kHidden.size()) != kHidden)
        return std::nullopt;
    text = rest.substr(kHidden.size());
    return number;
}

bool hasFieldsOfChannel(std::string_view line) {
    constexpr int kLeastColons = 8;
    return std::count(line.begin(), line.end(), ':') >= kLeastColons;
}

/// Gathers a list line by line.
struct ListReader {
    void read(std::string_view line, int lineNumber) {
        std::string_view const content = trimmed(line);
        std::string_view const behindColon =
            content.substr(0, 1) == ":" ? content.substr(1) : content;
        if (content.empty())
            return;
        if (behindColon.substr(0, kOwnComment.size()) == kOwnComment)
            readComment(behindColon.substr(kOwnComment.size()), lineNumber);
        else if (line[0] == ':' || (content[0] == ':' && !hasFieldsOfChannel(content)))
            readGroup(behindColon);
        else
            readChannel(line, lineNumber);
    }

    void readChannel(std::string_view line, int lineNumber) {
        try {
            Channel& channel = add(parseChannel(std::string(line)), lineNumber);
            channel.number = nextNumber++;
            channel.mark = std::exchange(mark, 0);
        } catch (LineError const& error) {
            if (trimmed(line)[0] != '#')
                list.rejected.push_back({lineNumber, error.what()});
        }
    }

    void readComment(std::string_view text, int lineNumber) {
        std::string_view line = text;
        auto const number = takeHidden(line);
        try {
            if (number) {
                Channel& channel = add(parseChannel(std::string(line)), lineNumber);
                channel.hidden = true;
                channel.mark = *number;
                // Alone it has the number of the whole list, in a group that of the group.
                channel.number = channel.group < 0 ? *number : nextNumber++;
                return;
            }
        } catch (LineError const&) {  // a hidden entry that is no channel
        }
        list.others.push_back({currentGroup(), lineNumber, std::string(text)});
    }

    Channel& add(Channel channel, int lineNumber) {
        channel.group = currentGroup();
        channel.line = lineNumber;
        list.channels.push_back(std::move(channel));
        return list.channels.back();
    }

    int currentGroup() const { return static_cast<int>(list.groups.size()) - 1; }

    void readGroup(std::string_view text) {
        int number = 0;
        if (text.substr(0, 1) == "@") {
            std::string_view behind = text.substr(1);
            if (auto const found = leadingNumber(behind)) {
                number = *found;
                nextNumber = std::max(nextNumber, number);
                text = behind;
            }
        }
        std::string name(trimmed(text));
        if (number != 0 || !name.empty())
            mark = number;
        if (name.empty())
            return;  // a number alone leaves the group open
        std::replace(name.begin(), name.end(), '|', ':');
        list.groups.push_back(std::move(name));
    }

    ChannelsConf list;
    int nextNumber = 1;
    int mark = 0;  // that waits for its channel
};

}  // namespace

bool isChannelsConf(std::string_view text) {
    bool isEmpty = true;
    while (!text.empty()) {
        std::string_view const line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        std::string_view const content = trimmed(line);
        if (content.empty() || (content[0] == '#' && content.find(kOwnComment) != 0))
            continue;
        if (content[0] == ':' || content[0] == '#' || hasFieldsOfChannel(content))
            return true;
        isEmpty = false;
    }
    return isEmpty;
}

ChannelsConf parseChannelsConf(std::istream& text) {
    ListReader reader;
    int lineNumber = 0;
    for (std::string line; std::getline(text, line);) {
        ++lineNumber;
        if (lineNumber == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0)
            line.erase(0, 3);
        if (!isUtf8(line))
            line = latin1ToUtf8(line);
        reader.read(line, lineNumber);
    }
    return std::move(reader.list);
}

std::string formatGroup(std::string const& name) { return ":" + withBars(name); }

std::string formatHidden(Channel const& channel, int number) {
    return formatOther(std::to_string(number) + std::string(kHidden) + formatChannel(channel));
}

std::string formatOther(std::string const& text) { return ":" + std::string(kOwnComment) + text; }

}  // namespace channel_database
