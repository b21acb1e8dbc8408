#include "edit/favourites.h"

#include <channellist-access/db_access.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "edit/reserved_numbers.h"
#include "failure.h"
#include "output/json_text.h"
#include "services/service_reader.h"
#include "services/service_words.h"

namespace tool {
namespace {

using channel_database::Channel;
using channel_database::ChannelsConf;

std::int64_t numberIn(const ResultRow& service, ServiceField field) {
    return wholeNumber(service[field]).value_or(0);
}

// The services of the list of all services, by DVB triplet.
class ServicesByTriplet {
  public:
    ServicesByTriplet() : services_(readServices(findList("all").uuid).rows) {
        for (const ResultRow& service : services_) {
            places_.emplace(Triplet(numberIn(service, SERVICE_FIELD_ORIGINAL_NETWORK_ID),
                                    numberIn(service, SERVICE_FIELD_TRANSPORT_STREAM_ID),
                                    numberIn(service, SERVICE_FIELD_SERVICE_ID)),
                            &service);
        }
    }

    // Null when no service has the triplet.
    const ResultRow* find(const Channel& channel) const {
        const auto [first, last] = places_.equal_range(
            Triplet(channel.networkId, channel.transportStreamId, channel.serviceId));
        const ResultRow* best = nullptr;
        int bestLikeness = hasIds(channel) ? -1 : 0;
        for (auto place = first; place != last; ++place) {
            const int likeness = likenessOf(*place->second, channel);
            if (likeness > bestLikeness) {
                best = place->second;
                bestLikeness = likeness;
            }
        }
        return best;
    }

  private:
    using Triplet = std::tuple<std::int64_t, std::int64_t, std::int64_t>;

    static bool hasIds(const Channel& channel) {
        return channel.networkId != 0 || channel.transportStreamId != 0;
    }

    // Without ids the service id alone says little: then the name or frequency has to fit, too.
    static int likenessOf(const ResultRow& service, const Channel& channel) {
        const std::string delivery = channel.source[0] == 'S'   ? "satellite"
                                     : channel.source[0] == 'C' ? "cable"
                                                                : "terrestrial";
        const bool sameName = service[SERVICE_FIELD_CAPTION] == channel.name;
        const bool sameFrequency =
            numberIn(service, SERVICE_FIELD_FREQUENCY) == channel.frequencyInKHz();
        if (!hasIds(channel) && !sameName && !sameFrequency) {
            return 0;
        }
        return (deliveryOf(service) == delivery ? 4 : 0) + (sameFrequency ? 2 : 0) +
               (sameName ? 1 : 0);
    }

    std::vector<ResultRow> services_;
    std::multimap<Triplet, const ResultRow*> places_;
};

List favList(const std::string& name) {
    List list = findList(name);
    if (list.favIndex == 0) {
        throw Failure("'" + name + "' is none of FAV1 to FAV4; --list names the list to write",
                      kUsage);
    }
    return list;
}

const std::string& groupOf(const Channel& channel, const ChannelsConf& channels) {
    if (channel.group < 0) {
        throw Failure(channel.name + " stands in no group; --list names the list to write", kUsage);
    }
    return channels.groups[static_cast<std::size_t>(channel.group)];
}

// In the order of the channels, each service once.
Favourites collect(const List& list, const std::vector<const Channel*>& channels,
                   const ServicesByTriplet& services) {
    Favourites favourites{list, {}, {}};
    ListContent content(displayName(list), {}, reservedNumbers(list));
    std::set<std::int64_t> taken;
    for (const Channel* channel : channels) {
        const ResultRow* const service = services.find(*channel);
        if (service == nullptr) {
            favourites.notFound.push_back(channel->name + " (line " +
                                          std::to_string(channel->line) + ")");
        } else if (const auto id = numberIn(*service, SERVICE_FIELD_PID); taken.insert(id).second) {
            content.add({std::nullopt, static_cast<unsigned int>(id), false,
                         (*service)[SERVICE_FIELD_CAPTION], (*service)[SERVICE_FIELD_UUID]},
                        std::nullopt);
        }
    }
    favourites.entries = content.entries();
    return favourites;
}

}  // namespace

std::vector<Favourites> findFavourites(const ChannelsConf& channels, const std::string& listName) {
    std::vector<std::pair<List, std::vector<const Channel*>>> lists;
    if (!listName.empty()) {
        lists.emplace_back(favList(listName), std::vector<const Channel*>());
    }
    std::map<int, std::size_t> places;  // of the groups
    for (const Channel& channel : channels.channels) {
        if (listName.empty() && places.emplace(channel.group, lists.size()).second) {
            lists.emplace_back(favList(groupOf(channel, channels)), std::vector<const Channel*>());
        }
        lists[listName.empty() ? places[channel.group] : 0].second.push_back(&channel);
    }
    const ServicesByTriplet services;
    std::vector<Favourites> result;
    result.reserve(lists.size());
    for (const auto& [list, members] : lists) {
        result.push_back(collect(list, members, services));
    }
    return result;
}

}  // namespace tool
