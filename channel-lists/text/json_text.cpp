#include "text/json_text.h"

#include <charconv>
#include <cstdio>

#include "text/invisible.h"

namespace channel_lists {

std::optional<std::int64_t> wholeNumber(std::string const& text) {
    std::int64_t number = 0;
    char const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, number);
    if (text.empty() || result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

Json numberOrText(std::string const& text) {
    if (text.empty())
        return nullptr;
    auto const number = wholeNumber(text);
    return number ? Json(*number) : Json(text);
}

// JSON escapes the control characters below U+0020; a terminal obeys those from U+0080 on as well,
// and those that turn the direction of a text (see displayText).
std::string dumpJson(Json const& value, int indent) {
    std::string text = value.dump(indent, ' ', false, Json::error_handler_t::replace);
    for (std::size_t at = 0; (at = text.find_first_of("\xC2\xE2", at)) != std::string::npos; ++at) {
        bool const isLong = text[at] == '\xE2';
        auto const bits = [&](std::size_t behind) {
            return static_cast<unsigned int>(text[at + behind]) & 0x3FU;
        };
        unsigned int const character = isLong ? 0x2000U | bits(1) << 6U | bits(2) : 0x80U | bits(1);
        if (isLong ? !isInvisible(static_cast<std::int32_t>(character)) : character >= 0xA0)
            continue;
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", character & 0xFFFFU);
        text.replace(at, isLong ? 3 : 2, escape);
    }
    return text;
}

}  // namespace channel_lists
