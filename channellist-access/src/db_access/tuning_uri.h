// Reading parameters back out of a tuning URI, "rec://plain/KIND?key=value&key=value".
#ifndef CHANNELLIST_DB_ACCESS_TUNING_URI_H
#define CHANNELLIST_DB_ACCESS_TUNING_URI_H

#include <array>
#include <optional>
#include <string_view>

#include "support/text.h"

namespace channellist {

// The parameters that a service row can show.
enum class TuningKey : std::size_t {
    Frontend,
    Frequency,
    Hdtv,
    OriginalNetwork,
    Polarization,
    Satellite,
    Service,
    SlotConfig,
    SymbolRate,
    TransportStream,
};

inline constexpr std::size_t kTuningKeyCount =
    static_cast<std::size_t>(TuningKey::TransportStream) + 1;

// A row asks for half a dozen parameters, so the URI is searched once for all of them.
class TuningUri {
  public:
    // Views `locator`, which outlives this object.
    explicit TuningUri(std::string_view locator);

    // The value of `key`: of the first "&key=", or without one of the first "?key=", up to the next
    // "&". Keys are case-sensitive; the value may be empty.
    std::optional<std::string_view> value(TuningKey key) const {
        return values_[static_cast<std::size_t>(key)];
    }

  private:
    void note(std::string_view parameter);

    // Keeps what follows this beginning of a parameter unless `key` has one. Inline, so that the
    // beginning is compared as a constant.
    void keep(TuningKey key, std::string_view beginning, std::string_view parameter) {
        std::optional<std::string_view>& value = values_[static_cast<std::size_t>(key)];
        if (!value && startsWith(parameter, beginning))
            value = parameter.substr(beginning.size());
    }

    std::array<std::optional<std::string_view>, kTuningKeyCount> values_;
};

}  // namespace channellist

#endif
