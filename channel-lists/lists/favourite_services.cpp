#include "lists/favourite_services.h"

#include <cstdlib>

#include "database/list_naming.h"
#include "services/service_reader.h"
#include "services/service_words.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

using channel_database::Channel;

std::int64_t numberIn(ResultRow const& service, ServiceField field) {
    return wholeNumber(service[field]).value_or(0);
}

bool hasIds(Channel const& channel) {
    return channel.networkId != 0 || channel.transportStreamId != 0;
}

// Lists give whole MHz where databases have kHz.
bool isSameFrequency(std::int64_t a, std::int64_t b) {
    constexpr std::int64_t kRounding = 1000;
    return std::abs(a - b) < kRounding;
}

std::string nameAndKind(std::string const& name, bool isRadio) {
    return name + (isRadio ? "\nradio" : "\nTV");
}

// 0 when it cannot be the channel: without ids a triplet says little, and the name or the
// frequency has to fit, too.
int likenessOf(ResultRow const& service, Channel const& channel) {
    std::string const delivery = channel.source[0] == 'S'   ? "satellite"
                                 : channel.source[0] == 'C' ? "cable"
                                                            : "terrestrial";
    bool const sameName = service[SERVICE_FIELD_CAPTION] == channel.name;
    bool const sameFrequency =
        isSameFrequency(numberIn(service, SERVICE_FIELD_FREQUENCY), channel.frequencyInKHz());
    if (!hasIds(channel) && !sameName && !sameFrequency)
        return 0;
    return 1 + (deliveryOf(service) == delivery ? 4 : 0) + (sameFrequency ? 2 : 0) +
           (sameName ? 1 : 0);
}

}  // namespace

FavouriteServices::FavouriteServices() : services_(readServices(allServicesList().uuid).rows) {
    for (ResultRow const& service : services_) {
        byTriplet_.emplace(Triplet(numberIn(service, SERVICE_FIELD_ORIGINAL_NETWORK_ID),
                                   numberIn(service, SERVICE_FIELD_TRANSPORT_STREAM_ID),
                                   numberIn(service, SERVICE_FIELD_SERVICE_ID)),
                           &service);
        byName_.emplace(nameAndKind(service[SERVICE_FIELD_CAPTION], kindOf(service) == "radio"),
                        &service);
    }
}

FavouriteServices::Match FavouriteServices::find(
    Channel const& channel, std::function<int(ResultRow const&)> const& preference) const {
    auto const [first, last] = byTriplet_.equal_range(
        Triplet(channel.networkId, channel.transportStreamId, channel.serviceId));
    Match best;
    std::pair<int, int> bestRank;
    for (auto place = first; place != last; ++place) {
        int const likeness = likenessOf(*place->second, channel);
        std::pair<int, int> const rank(likeness, preference(*place->second));
        if (likeness > 0 && (best.service == nullptr || rank > bestRank)) {
            best.service = place->second;
            bestRank = rank;
        }
    }
    auto const named = byName_.equal_range(nameAndKind(channel.name, channel.isRadio()));
    if (best.service == nullptr && std::distance(named.first, named.second) == 1)
        best = {named.first->second, true};
    return best;
}

}  // namespace channel_lists
