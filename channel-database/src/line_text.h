// What the lines of a channel list are made of.
#pragma once

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace channel_database {

/// The source of a satellite channel of which nobody tells the satellite.
constexpr char kUnknownSatellite[] = "S0E";

inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r\n";
    auto const first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

/// The number at the beginning of `text`, which is taken off it.
inline std::optional<int> leadingNumber(std::string_view& text, int base = 10) {
    int number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || number < 0)
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

/// A colon would end the field.
inline std::string withBars(std::string text) {
    std::replace(text.begin(), text.end(), ':', '|');
    return text;
}

}  // namespace channel_database
