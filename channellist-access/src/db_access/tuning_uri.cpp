#include "db_access/tuning_uri.h"

namespace channellist {

TuningUri::TuningUri(std::string_view locator) {
    std::size_t end = locator.find('&');
    while (end != std::string_view::npos) {
        std::size_t const start = end + 1;
        end = locator.find('&', start);
        note(locator.substr(start, end - start));
    }
    end = 0;  // of one "?" that of the next as well, unless that lies behind it
    for (std::size_t mark = locator.find('?'); mark != std::string_view::npos;
         mark = locator.find('?', mark + 1)) {
        if (end <= mark)
            end = locator.find('&', mark);
        note(locator.substr(mark + 1, end - mark - 1));
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
