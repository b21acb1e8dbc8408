// What lamedb and bouquets say in the same way.
#pragma once

#include <channel-database/channels_conf.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace channel_database {

using TransponderKey = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;

/// Namespace, transport stream and network.
inline TransponderKey transponderKey(std::uint32_t place, std::uint32_t stream,
                                     std::uint32_t network) {
    return {place, stream, network};
}

inline std::optional<int> hexadecimalNumber(std::string_view text) {
    std::uint32_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    if (error != std::errc() || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return static_cast<int>(number);
}

/// The first `count` fields between colons; nothing when one is missing or no number.
inline std::optional<std::vector<std::uint32_t>> hexadecimalFields(std::string_view text,
                                                                   std::size_t count) {
    std::vector<std::uint32_t> numbers;
    while (numbers.size() < count) {
        std::string_view const field = text.substr(0, text.find(':'));
        auto const number = hexadecimalNumber(field);
        if (!number)
            return std::nullopt;
        numbers.push_back(static_cast<std::uint32_t>(*number));
        text.remove_prefix(std::min(text.size(), field.size() + 1));
    }
    return numbers;
}

constexpr int kTvType = 1;
constexpr int kRadioType = 2;
constexpr int kHdTvType = 25;

constexpr int kTvTypes[] = {1, 17, 22, 25, 28, 31, 32};  // MPEG-2, AVC, 3D, HEVC
constexpr int kRadioTypes[] = {2, 10};

template <std::size_t Count>
bool isOneOf(int const (&types)[Count], int type) {
    return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

inline bool isRadioType(int type) { return isOneOf(kRadioTypes, type); }

/// All others are data, of an operator's own, or nothing that anybody watches.
inline bool isWatched(int type) { return isOneOf(kTvTypes, type) || isRadioType(type); }

inline bool isHighDefinitionType(int type) { return type == 17 || type >= kHdTvType; }

inline int serviceType(Channel const& channel) {
    return channel.isRadio() ? kRadioType : channel.isHighDefinition() ? kHdTvType : kTvType;
}

/// Names carry control characters that mark their short form.
inline std::string shownText(std::string_view text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto const byte = static_cast<unsigned char>(text[i]);
        bool const isC1 =
            byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (isC1)
            ++i;
        else if (byte >= 0x20 && byte != 0x7F)
            shown += text[i];
    }
    auto const begin = shown.find_first_not_of(' ');
    return begin == std::string::npos
               ? std::string()
               : shown.substr(begin, shown.find_last_not_of(' ') - begin + 1);
}

inline std::string tripletText(Channel const& channel) {
    return std::to_string(channel.networkId) + "-" + std::to_string(channel.transportStreamId) +
           "-" + std::to_string(channel.serviceId);
}

/// What the formats count up to 3599, east from 0; west is negative here.
inline int orbitalPosition(int tenths) { return tenths > 1800 ? tenths - 3600 : tenths; }

inline int enigma2Position(Channel const& channel) {
    int const position = channel.orbitalPosition();
    return position < 0 ? position + 3600 : position;
}

/// The high half of a namespace says where a transponder is: a satellite's position, or one of
/// these.
constexpr std::uint32_t kCablePlace = 0xFFFF;
constexpr std::uint32_t kTerrestrialPlace = 0xEEEE;

inline std::uint32_t enigma2Place(Channel const& channel) {
    std::uint32_t const place = channel.source[0] == 'C' ? kCablePlace
                                : channel.source[0] == 'T'
                                    ? kTerrestrialPlace
                                    : static_cast<std::uint32_t>(enigma2Position(channel));
    return place << 16;
}

/// "S19.2E" of 192.
inline std::string orbitalSource(int tenths) {
    int const size = std::abs(tenths);
    std::string const fraction = size % 10 == 0 ? "" : "." + std::to_string(size % 10);
    return "S" + std::to_string(size / 10) + fraction + (tenths < 0 ? "W" : "E");
}

}  // namespace channel_database
