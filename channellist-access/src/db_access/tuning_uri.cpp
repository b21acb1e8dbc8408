#include "db_access/tuning_uri.h"

#include <algorithm>

namespace channellist {

namespace {

// In the order of TuningKey.
constexpr std::array<std::string_view, kTuningKeyCount> kTuningKeys = {
    "frontend", "frequency", "hdtv",       "onid",       "polarization",
    "satid",    "sid",       "slotconfig", "symbolrate", "tsid",
};

}  // namespace

TuningUri::TuningUri(std::string_view locator) {
    for (char const mark : {'&', '?'})
        for (std::size_t at = locator.find(mark); at != std::string_view::npos;
             at = locator.find(mark, at + 1))
            note(locator.substr(at + 1));
}

// Keeps the value of a parameter, "key=value" and the rest of the URI, unless its key has one.
void TuningUri::note(std::string_view parameter) {
    std::size_t const equals = parameter.find('=');
    if (equals == std::string_view::npos)
        return;
    auto const key = std::find(kTuningKeys.begin(), kTuningKeys.end(), parameter.substr(0, equals));
    if (key == kTuningKeys.end())
        return;
    std::optional<std::string_view>& value =
        values_[static_cast<std::size_t>(key - kTuningKeys.begin())];
    if (!value)
        value = parameter.substr(0, parameter.find('&', equals)).substr(equals + 1);
}

}  // namespace channellist
