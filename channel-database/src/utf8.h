#pragma once

#include <string>

namespace channel_database {

/// Whether the bytes are well-formed UTF-8 (the check is by lead and continuation bytes).
inline bool isUtf8(const std::string& text) {
    int expected = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continues = (byte & 0xC0) == 0x80;
        if (continues != (expected > 0)) {
            return false;
        }
        if (continues) {
            --expected;
        } else if (byte >= 0x80) {
            expected = byte >= 0xC2 && byte < 0xE0   ? 1
                       : byte >= 0xE0 && byte < 0xF0 ? 2
                       : byte >= 0xF0 && byte < 0xF5 ? 3
                                                     : -1;
            if (expected < 0) {
                return false;
            }
        }
    }
    return expected == 0;
}

/// Latin-1 (ISO 8859-1) text as UTF-8.
inline std::string latin1ToUtf8(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
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
