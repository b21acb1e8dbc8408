// Reading parameters back out of a tuning URI, "rec://plain/KIND?key=value&key=value".
#ifndef CHANNELLIST_DB_ACCESS_TUNING_URI_H
#define CHANNELLIST_DB_ACCESS_TUNING_URI_H

#include <array>
#include <iterator>
#include <optional>
#include <string_view>

namespace channellist {

// The parameters that a service row can show, and how each begins.
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
inline constexpr std::string_view kTuningKeys[] = {
    "frontend=", "frequency=", "hdtv=",       "onid=",       "polarization=",
    "satid=",    "sid=",       "slotconfig=", "symbolrate=", "tsid=",
};

inline constexpr std::size_t kTuningKeyCount = std::size(kTuningKeys);

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
    // Keeps the value of a parameter that a row can show, the first of each.
    void note(std::string_view parameter);

    std::array<std::optional<std::string_view>, kTuningKeyCount> values_;
};

}  // namespace channellist

#endif
