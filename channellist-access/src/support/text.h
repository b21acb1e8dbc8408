// Parts of texts, without a copy.
#ifndef CHANNELLIST_SUPPORT_TEXT_H
#define CHANNELLIST_SUPPORT_TEXT_H

#include <string_view>

namespace channellist {

// Byte-wise; a text begins with itself.
constexpr bool startsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

// `text` without leading and trailing blanks, tabs, line feeds and carriage returns.
inline std::string_view stripped(std::string_view text) {
    auto const isWhiteSpace = [](char character) {
        return character == ' ' || character == '\t' || character == '\n' || character == '\r';
    };
    while (!text.empty() && isWhiteSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isWhiteSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace channellist

#endif
