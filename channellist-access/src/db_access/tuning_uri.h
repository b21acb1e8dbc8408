// Reading parameters back out of a tuning URI, "rec://plain/KIND?key=value&key=value".
#ifndef CHANNELLIST_DB_ACCESS_TUNING_URI_H
#define CHANNELLIST_DB_ACCESS_TUNING_URI_H

#include <optional>
#include <string_view>

namespace channellist {

// The value of `key`: of the first "&key=", or without one of the first "?key=", up to the next
// "&". Keys are case-sensitive; the value may be empty.
std::optional<std::string_view> getLocatorParameter(std::string_view locator, std::string_view key);

}  // namespace channellist

#endif
