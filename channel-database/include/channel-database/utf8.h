#pragma once

#include <string>
#include <string_view>

namespace channel_database {

/// How many bytes continue the character that begins with `lead`; -1 when none does.
inline int continuationBytes(unsigned char lead) {
    if (lead < 0x80)
        return 0;
    if (lead < 0xC2 || lead > 0xF4)
        return -1;
    return lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
}

/// Whether the text is UTF-8, judged by its lead and continuation bytes.
inline bool isUtf8(std::string_view text) {
    int expected = 0;
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        bool const continues = (byte & 0xC0) == 0x80;
        if (continues != (expected > 0))
            return false;
        expected = continues ? expected - 1 : continuationBytes(byte);
        if (expected < 0)
            return false;
    }
    return expected == 0;
}

/// Latin-1 (ISO 8859-1) text as UTF-8.
inline std::string latin1ToUtf8(std::string const& text) {
    std::string result;
    for (char const c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xC0 | (byte >> 6));
            result += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return result;
}

}  // namespace channel_database
