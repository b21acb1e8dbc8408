#include "text/json_text.h"

#include <charconv>
#include <cstdio>

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

// JSON escapes the control characters below U+0020; a terminal obeys those from U+0080 on as well.
std::string dumpJson(Json const& value, int indent) {
    std::string text = value.dump(indent, ' ', false, Json::error_handler_t::replace);
    for (std::size_t at = 0; (at = text.find('\xC2', at)) != std::string::npos; ++at) {
        auto const second = static_cast<unsigned char>(text[at + 1]);
        if (second >= 0xA0)
            continue;
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned int>(second));
        text.replace(at, 2, escape);
    }
    return text;
}

}  // namespace channel_lists
