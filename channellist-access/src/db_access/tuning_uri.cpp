#include "db_access/tuning_uri.h"

namespace channellist {

TuningUri::TuningUri(std::string_view locator) {
    for (char const mark : {'&', '?'})
        for (std::size_t at = locator.find(mark); at != std::string_view::npos;
             at = locator.find(mark, at + 1))
            note(locator.substr(at + 1));
}

// Keeps the value of a parameter that a row can show, given with the rest of the URI. The first
// character tells most others apart.
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
