#include "db_access/tuning_uri.h"

#include <algorithm>

#include "support/text.h"

namespace channellist {
namespace {

constexpr bool begins(std::string_view parameter, TuningKey key) {
    return startsWith(parameter, kTuningKeys[static_cast<std::size_t>(key)]);
}

// The first of these keys that the parameter begins with, else kTuningKeyCount. Unrolled, so that
// each beginning is compared as a constant.
template <typename... Keys>
constexpr std::size_t firstOf(std::string_view parameter, Keys... keys) {
    std::size_t found = kTuningKeyCount;
    static_cast<void>((
        (begins(parameter, keys) ? (found = static_cast<std::size_t>(keys), true) : false) || ...));
    return found;
}

// The first character tells most parameters apart.
constexpr std::size_t keyOf(std::string_view parameter) {
    switch (parameter.empty() ? '\0' : parameter.front()) {
        case 'f':
            return firstOf(parameter, TuningKey::Frontend, TuningKey::Frequency);
        case 'h':
            return firstOf(parameter, TuningKey::Hdtv);
        case 'o':
            return firstOf(parameter, TuningKey::OriginalNetwork);
        case 'p':
            return firstOf(parameter, TuningKey::Polarization);
        case 's':
            return firstOf(parameter, TuningKey::Satellite, TuningKey::Service,
                           TuningKey::SlotConfig, TuningKey::SymbolRate);
        case 't':
            return firstOf(parameter, TuningKey::TransportStream);
        default:
            return kTuningKeyCount;
    }
}

constexpr bool findsEveryKey() {
    for (std::size_t key = 0; key < kTuningKeyCount; ++key)
        if (keyOf(kTuningKeys[key]) != key)
            return false;
    return true;
}

static_assert(kTuningKeyCount == static_cast<std::size_t>(TuningKey::TransportStream) + 1);
static_assert(findsEveryKey());

}  // namespace

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

void TuningUri::note(std::string_view parameter) {
    std::size_t const key = keyOf(parameter);
    if (key < kTuningKeyCount && !values_[key])
        values_[key] = parameter.substr(kTuningKeys[key].size());
}

}  // namespace channellist
