#include "db_access/tuning_uri.h"

#include "support/text.h"

namespace channellist {

namespace {

// The value behind the first occurrence of `mark`, `key` and "=".
std::optional<std::string_view> valueBehind(std::string_view locator, char mark,
                                            std::string_view key) {
    for (std::size_t at = locator.find(mark); at != std::string_view::npos;
         at = locator.find(mark, at + 1)) {
        std::string_view const rest = locator.substr(at + 1);
        if (startsWith(rest, key) && rest.size() > key.size() && rest[key.size()] == '=') {
            std::string_view const value = rest.substr(key.size() + 1);
            return value.substr(0, value.find('&'));
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string_view> getLocatorParameter(std::string_view locator,
                                                    std::string_view key) {
    std::optional<std::string_view> const value = valueBehind(locator, '&', key);
    return value ? value : valueBehind(locator, '?', key);
}

}  // namespace channellist
