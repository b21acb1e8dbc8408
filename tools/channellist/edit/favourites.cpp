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

std::int64_t numberIn(ResultRow const& service, ServiceField field) {
    return wholeNumber(service[field]).value_or(0);
}

// The services of the list of all services, by DVB triplet.
class ServicesByTriplet {
  public:
    ServicesByTriplet() : services_(readServices(findList("all").uuid).rows) {
        for (ResultRow const& service : services_) {
            places_.emplace(Triplet(numberIn(service, SERVICE_FIELD_ORIGINAL_NETWORK_ID),
                                    numberIn(service, SERVICE_FIELD_TRANSPORT_STREAM_ID),
                                    numberIn(service, SERVICE_FIELD_SERVICE_ID)),
                            &service);
        }
    }

    // Null when no service has the triplet.
    ResultRow const* find(Channel const& channel) const {
        auto const [first, last] = places_.equal_range(
            Triplet(channel.networkId, channel.transportStreamId, channel.serviceId));
        ResultRow const* best = nullptr;
        int bestLikeness = hasIds(channel) ? -1 : 0;
        for (auto place = first; place != last; ++place) {
            int const likeness = likenessOf(*place->second, channel);
            if (likeness > bestLikeness) {
                best = place->second;
                bestLikeness = likeness;
            }
        }
        return best;
    }

  private:
    using Triplet = std::tuple<std::int64_t, std::int64_t, std::int64_t>;

    static bool hasIds(Channel const& channel) {
        return channel.networkId != 0 || channel.transportStreamId != 0;
    }

    // Without ids the service id alone says little: then the name or frequency has to fit, too.
    static int likenessOf(ResultRow const& service, Channel const& channel) {
        std::string const delivery = channel.source[0] == 'S'   ? "satellite"
                                     : channel.source[0] == 'C' ? "cable"
                                                                : "terrestrial";
        bool const sameName = service[SERVICE_FIELD_CAPTION] == channel.name;
        bool const sameFrequency =
            numberIn(service, SERVICE_FIELD_FREQUENCY) == channel.frequencyInKHz();
        if (!hasIds(channel) && !sameName && !sameFrequency)
            return 0;
        return (deliveryOf(service) == delivery ? 4 : 0) + (sameFrequency ? 2 : 0) +
               (sameName ? 1 : 0);
    }

    std::vector<ResultRow> services_;
    std::multimap<Triplet, ResultRow const*> places_;
};

List favList(std::string const& name) {
    List list = findList(name);
    if (list.favIndex == 0) {
        throw Failure("'" + name + "' is none of FAV1 to FAV4; --list names the list to write",
                      kUsage);
    }
    return list;
}

std::string const& groupOf(Channel const& channel, ChannelsConf const& channels) {
    if (channel.group < 0)
        throw Failure(channel.name + " stands in no group; --list names the list to write", kUsage);
    return channels.groups[static_cast<std::size_t>(channel.group)];
}

// In the order of the channels, each service once.
Favourites collect(List const& list, std::vector<Channel const*> const& channels,
                   ServicesByTriplet const& services) {
    Favourites favourites{list, {}, {}};
    ListContent content(displayName(list), {}, reservedNumbers(list));
    std::set<std::int64_t> taken;
    for (Channel const* channel : channels) {
        ResultRow const* const service = services.find(*channel);
        if (service == nullptr) {
            favourites.notFound.push_back(channel->name + " (line " +
                                          std::to_string(channel->line) + ")");
        } else if (auto const id = numberIn(*service, SERVICE_FIELD_PID); taken.insert(id).second) {
            content.add({std::nullopt, static_cast<unsigned int>(id), false,
                         (*service)[SERVICE_FIELD_CAPTION], (*service)[SERVICE_FIELD_UUID], ""},
                        std::nullopt);
        }
    }
    favourites.entries = content.entries();
    return favourites;
}

}  // namespace

std::vector<Favourites> findFavourites(ChannelsConf const& channels, std::string const& listName) {
    std::vector<std::pair<List, std::vector<Channel const*>>> lists;
    if (!listName.empty())
        lists.emplace_back(favList(listName), std::vector<Channel const*>());
    std::map<int, std::size_t> places;  // of the groups
    for (Channel const& channel : channels.channels) {
        if (listName.empty() && places.emplace(channel.group, lists.size()).second)
            lists.emplace_back(favList(groupOf(channel, channels)), std::vector<Channel const*>());
        lists[listName.empty() ? places[channel.group] : 0].second.push_back(&channel);
    }
    ServicesByTriplet const services;
    std::vector<Favourites> result;
    result.reserve(lists.size());
    for (auto const& [list, members] : lists)
        result.push_back(collect(list, members, services));
    return result;
}

}  // namespace tool
