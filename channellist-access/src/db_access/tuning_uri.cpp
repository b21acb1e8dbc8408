#include "db_access/tuning_uri.h"

#include <algorithm>

namespace channellist {

TuningUri::TuningUri(std::string_view locator) {
    auto const ampersandFrom = [&](std::size_t at) {
        return std::min(locator.find('&', at), locator.size());
    };
    std::size_t const first = ampersandFrom(0);
    for (std::size_t at = first; at < locator.size();) {
        std::size_t const end = ampersandFrom(at + 1);
        note(locator.substr(at + 1, end - at - 1));
        at = end;
    }
    for (std::size_t at = locator.find('?'); at != std::string_view::npos;
         at = locator.find('?', at + 1)) {
        std::size_t const end = at < first ? first : ampersandFrom(at);
        note(locator.substr(at + 1, end - at - 1));
    }
}

// Keeps the value of a parameter that a row can show. The first character tells most others apart.
void TuningUri::note(std::string_view parameter) {
    switch (parameter.empty() ? '\0' : parameter.front()) {
        case 'f':
            keep(TuningKey::Frontend, "frontend=", parameter);
            keep(TuningKey::Frequency, "frequency=", parameter);
            break;
        case 'h':
            keep(TuningKey::Hdtv, "hdtv=", parameter);
            break;
        case 'o':
            keep(TuningKey::OriginalNetwork, "onid=", parameter);
            break;
        case 'p':
            keep(TuningKey::Polarization, "polarization=", parameter);
            break;
        case 's':
            keep(TuningKey::Satellite, "satid=", parameter);
            keep(TuningKey::Service, "sid=", parameter);
            keep(TuningKey::SlotConfig, "slotconfig=", parameter);
            keep(TuningKey::SymbolRate, "symbolrate=", parameter);
            break;
        case 't':
            keep(TuningKey::TransportStream, "tsid=", parameter);
            break;
    }
}

}  // namespace channellist
