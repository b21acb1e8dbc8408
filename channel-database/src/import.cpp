#include <channel-database/import.h>

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "set_numbers.h"

namespace channel_database {
namespace {

constexpr int kFavLists = 4;
constexpr int kAstraPosition = 192;
constexpr int kAstraNetwork = 1;
constexpr int kNoNetwork = -1;  // of a list whose services come from many
constexpr char const* kInputs[] = {"hdmi1", "hdmi2",  "hdmi3",    "hdmi4",    "AV1",      "AVS",
                                   "PC IN", "ANALOG", "SPDIF IN", "SCART AV", "COMPONENT"};

constexpr char const* kAstraName = "Astra 19.2°E";

struct DeliveryList {
    char source;
    char const* creator;
    char const* name;
    char const* uuid;
};
constexpr DeliveryList kDeliveryLists[] = {{'T', "servicelist://tamun.dvbt", "DVB-T", "dvbt"},
                                           {'C', "servicelist://tamun.dvbc", "DVB-C", "dvbc"},
                                           {'S', "servicelist://tamun.dvbs", "DVB-S", "dvbs"}};

/// Low and high band of the universal LNB, whose switching frequency is 11.7 GHz.
int bandNumber(int kHz) {
    if (kHz < 10700000 || kHz > 12750000)
        return 0;
    return kHz < 11700000 ? 1 : 2;
}

/// A service, and the line that made it.
struct KnownService {
    Service service;
    Channel const* channel;
    std::string transponder;
};

class Importer {
  public:
    Importer(ChannelDatabase& database, ChannelsConf const& list)
        : database_(database),
          list_(list),
          all_(makeList("tamun.sl2.servicelist$all", "$all", "all")),
          av_(makeList("tamun.sl2.servicelist$av", "$av", "av")) {
        for (int i = 1; i <= kFavLists; ++i) {
            std::string const number = std::to_string(i);
            makeList("User.tvFAV" + number, "FAV" + number, "fav" + number);
        }
    }

    void addInputs() {
        int number = 0;
        for (char const* name : kInputs)
            database_.put(av_, database_.input(name), ++number);
    }

    void finish() {
        database_.run(
            "UPDATE FavoriteList SET MaxChannelNumber = Highest FROM (SELECT FavoriteId AS List,"
            " max(ChannelNum) AS Highest FROM FavoriteItem WHERE isDeleted = 0 GROUP BY FavoriteId)"
            " WHERE List = Pid");
    }

    void add(Channel const& channel) {
        if (favIndexOf(channel) != 0)
            addFavourite(channel);
        else if (channel.isReference)
            addReference(channel);
        else if (auto const list = ownList(channel))
            addToOwnList(channel, *list);
        else
            addChannel(channel);
    }

    /// 1 for a channel of the group "FAV1"; 0 for those of others.
    int favIndexOf(Channel const& channel) const {
        for (int i = 1; channel.group >= 0 && i <= kFavLists; ++i)
            if (groupOf(channel) == "FAV" + std::to_string(i))
                return i;
        return 0;
    }

    std::size_t services() const { return madeServices_; }

  private:
    using Place = std::pair<Id, Id>;  // list and service

    /// In a group, a service that stands elsewhere is the same one in a further list.
    void addChannel(Channel const& channel) {
        if (channel.group < 0) {
            makeChannel(channel, channel.number);
            return;
        }
        Id const list = userList(channel);
        KnownService* known = find(channel, list);
        bool const isNew = known == nullptr;
        if (isNew)
            known = &makeChannel(channel, channel.number);
        bool const isNumbered = !isNew && isOfKnown(channel.group);
        putInto(list, channel, *known, isNumbered ? numberIn(list, channel) : ++counts_[list]);
    }

    /// A group of the name of a list that is made anyway says what number each channel has there.
    void addToOwnList(Channel const& channel, Id list) {
        Id const number = numberIn(list, channel);
        KnownService* known = find(channel, list);
        if (known == nullptr)
            known = &makeChannel(channel, number);
        auto const item = items_.find({list, known->service});
        if (item == items_.end())
            putInto(list, channel, *known, number);
        else
            item->second.deleted(channel.hidden).set("ChannelNum", number);
        used_.insert({list, known->service});
    }

    void addFavourite(Channel const& channel) {
        int const index = favIndexOf(channel);
        Id const fav = lists_.at("fav" + std::to_string(index));
        KnownService* known = find(channel, fav);
        if (known == nullptr && channel.isReference)
            return;  // to a service that the list does not have
        if (known == nullptr) {
            shown_.push_back(channel);
            shown_.back().hidden = false;
            known = &makeChannel(shown_.back(), channel.number);
        }
        putInto(fav, channel, *known, numberIn(fav, channel));
        known->service.favTag(index);
    }

    /// A group of references shows services that stand elsewhere.
    void addReference(Channel const& channel) {
        if (channel.group < 0 || services_.count(channel.id()) == 0)
            return;
        Id const list = userList(channel);
        if (KnownService* const known = find(channel, list))
            putInto(list, channel, *known, ++counts_[list]);
    }

    KnownService& makeChannel(Channel const& channel, Id number) {
        auto& known = services_[channel.id()];
        ++madeServices_;
        known.push_back({makeService(channel), &channel, transponderText(channel)});
        Service const& service = known.back().service;
        Id const delivery = deliveryList(channel);
        put(channel, delivery, service, number);
        put(channel, all_, service, number).original(delivery);
        if (channel.orbitalPosition() == kAstraPosition)
            put(channel, astraList(), service, number);
        return known.back();
    }

    /// The service that a channel of `list` names: one of the same ids and transponder that the
    /// list does not have yet, first of all one whose line is the same; null without one.
    KnownService* find(Channel const& channel, Id list) {
        auto const same = services_.find(channel.id());
        if (same == services_.end())
            return nullptr;
        KnownService* best = nullptr;
        int bestFit = -1;
        std::string const transponder = transponderText(channel);
        for (KnownService& each : same->second) {
            bool const isThere = each.transponder == transponder;
            if (used_.count({list, each.service}) != 0 || !(isThere || isLoose(channel)))
                continue;
            int const fit = (isThere ? 2 : 0) + (each.channel->name == channel.name ? 1 : 0);
            if (fit > bestFit) {
                best = &each;
                bestFit = fit;
            }
        }
        return best;
    }

    /// Favourites and references are found on a transponder that has changed, too.
    bool isLoose(Channel const& channel) const {
        return channel.isReference || favIndexOf(channel) != 0;
    }

    /// Whether all channels of the group stand in front of all groups, as when a database is
    /// exported: such a group counts by itself.
    bool isOfKnown(int group) {
        if (inFront_.empty()) {
            inFront_.assign(list_.groups.size(), true);
            std::set<std::string> ids;
            for (Channel const& each : list_.channels)
                if (each.group < 0)
                    ids.insert(each.id());
                else if (ids.count(each.id()) == 0)
                    inFront_[static_cast<std::size_t>(each.group)] = false;
        }
        return inFront_[static_cast<std::size_t>(group)];
    }

    Id numberIn(Id list, Channel const& channel) {
        Id const number = channel.mark != 0 ? channel.mark : counts_[list] + 1;
        if (!channel.hidden)
            counts_[list] = number;
        return number;
    }

    void putInto(Id list, Channel const& channel, KnownService const& known, Id number) {
        used_.insert({list, known.service});
        put(channel, list, known.service, number).original(deliveryList(channel));
    }

    Item put(Channel const& channel, Id list, Service const& service, Id number) {
        Item item = database_.put(list, service, number);
        if (channel.hidden)
            item.deleted();
        items_.emplace(Place(list, service), item);
        return item;
    }

    Id makeList(std::string const& creator, std::string const& name, std::string const& uuid,
                int network = kNoNetwork) {
        Id const list = database_.list(creator).name(name).uuid(uuid).networkId(network);
        lists_[uuid] = list;
        return list;
    }

    /// The list of that uuid, made when it is wanted for the first time.
    Id listOf(std::string const& creator, std::string const& name, std::string const& uuid,
              int network = kNoNetwork) {
        auto const found = lists_.find(uuid);
        return found != lists_.end() ? found->second : makeList(creator, name, uuid, network);
    }

    Id deliveryList(Channel const& channel) {
        for (DeliveryList const& each : kDeliveryLists)
            if (each.source == channel.source[0])
                return listOf(each.creator, each.name, each.uuid);
        return all_;  // a source has no other letter
    }

    Id astraList() {
        return listOf("servicelist://tamun.Astra 19.2°E", kAstraName, "astra-19.2e", kAstraNetwork);
    }

    std::optional<Id> ownList(Channel const& channel) {
        if (channel.group < 0)
            return std::nullopt;
        std::string const& group = groupOf(channel);
        for (DeliveryList const& each : kDeliveryLists)
            if (group == each.name)
                return listOf(each.creator, each.name, each.uuid);
        return group == kAstraName ? std::optional<Id>(astraList()) : std::nullopt;
    }

    /// Groups of one name are one; of the channels of a group, TV and radio have a list each.
    Id userList(Channel const& channel) {
        std::string const kind = channel.isRadio() ? "radio" : "tv";
        auto const count = static_cast<int>(userGroups_.size());
        int const index = userGroups_.emplace(groupOf(channel), count + 1).first->second;
        std::string const number = std::to_string(index);
        return listOf("User." + kind + "." + number, groupOf(channel),
                      "user-" + kind + "-" + number);
    }

    std::string const& groupOf(Channel const& channel) const {
        return list_.groups[static_cast<std::size_t>(channel.group)];
    }

    Service makeService(Channel const& channel) {
        std::string const transponder = transponderText(channel);
        auto const known = tuners_.find(transponder);
        Service service = database_.service(channel.delivery(), channel.name, kNewId,
                                            known == tuners_.end() ? kNewId : known->second);
        if (known == tuners_.end()) {
            tuners_[transponder] = service.tuner();
            writeTuner(channel, service.tunerUuid(transponder));
        }
        service.uuid(newUuid(channel))
            .triplet(channel.networkId, channel.transportStreamId, channel.serviceId);
        if (channel.isRadio())
            service.radio();
        if (channel.isEncrypted())
            service.encrypted();
        if (channel.isHighDefinition())
            service.hdtv();
        if (!channel.shortName.empty())
            service.shortName(channel.shortName).serviceName(channel.name);  // lists show the name
        return service;
    }

    /// Of what the tuner's row keeps, so that a list made of the database again gives the same.
    static std::string transponderText(Channel const& channel) {
        Channel kept;
        kept.polarization = channel.polarization;
        for (char const letter : keptParameters(channel.delivery()))
            if (int const value = channel.parameter(letter); value != 0)
                kept.parameters[letter] = value;
        if (channel.delivery() == Delivery::DvbS2 && modcodOf(channel) == 0) {
            kept.parameters.erase('M');
            kept.parameters.erase('C');
        }
        bool const hasSymbols = channel.source[0] == 'S' || channel.delivery() == Delivery::DvbC;
        return channel.source + "-" + std::to_string(channel.frequencyInKHz()) + "-" +
               kept.parameterText() + "-" + std::to_string(hasSymbols ? channel.symbolRate : 0) +
               "-" + std::to_string(channel.networkId);
    }

    static int modcodOf(Channel const& channel) {
        return modcodNumber({channel.parameter('M'), channel.parameter('C')});
    }

    static std::string_view keptParameters(Delivery delivery) {
        switch (delivery) {
            case Delivery::DvbT:
                return "BIM";
            case Delivery::DvbT2:
                return "BIMPS";
            case Delivery::DvbC:
                return "IM";
            case Delivery::DvbC2:
                return "BIPS";
            default:
                return "CIMS";
        }
    }

    static void writeTuner(Channel const& channel, Service& service) {
        int const kHz = channel.frequencyInKHz();
        service.nitId(channel.networkId)
            .frequency(kHz)
            .set("SpectrumInversion", channel.parameter('I'));
        switch (channel.delivery()) {
            case Delivery::DvbT:
            case Delivery::DvbT2:
                service.set("Constellation", channel.parameter('M'));
                service.set("Bandwidth", channel.parameter('B'));
                break;
            case Delivery::DvbC:
                service.set("Modulation", channel.parameter('M'));
                service.symbolRate(channel.symbolRate);
                break;
            case Delivery::DvbC2:
                service.set("Bandwidth", channel.parameter('B'));
                break;
            case Delivery::DvbS:
                service.set("Modulation", channel.parameter('M'));
                service.set("CodeRate", channel.parameter('C'));
                break;
            default:
                service.set("ModulationCoding", modcodOf(channel));
                break;
        }
        if (channel.delivery() == Delivery::DvbT2 || channel.delivery() == Delivery::DvbC2)
            service.plpId(channel.parameter('P'));
        if (channel.source[0] == 'S') {
            service.satellite(satelliteNumber(channel.orbitalPosition()))
                .symbolRate(channel.symbolRate)
                .polarization(polarizationNumber(channel.polarization))
                .set("Band", bandNumber(kHz));
        }
    }

    /// The channel id; "#2" and so on behind it when the list names the channel again.
    std::string newUuid(Channel const& channel) {
        std::string const id = channel.id();
        int const occurrence = ++uuids_[id];
        return occurrence == 1 ? id : id + "#" + std::to_string(occurrence);
    }

    ChannelDatabase& database_;
    ChannelsConf const& list_;
    std::map<std::string, Id> lists_;                            // by uuid
    std::map<std::string, Id> tuners_;                           // by transponder
    std::map<std::string, std::vector<KnownService>> services_;  // by channel id
    std::set<Place> used_;                                       // what stands in a list by now
    std::map<Place, Item> items_;
    std::deque<Channel> shown_;  // of services that only a FAV list has
    std::map<std::string, int> userGroups_;
    std::vector<bool> inFront_;  // by group
    std::map<std::string, int> uuids_;
    std::size_t madeServices_ = 0;
    std::map<Id, Id> counts_;  // of the items of the lists that count from 1
    Id all_;
    Id av_;
};

}  // namespace

std::size_t importChannels(ChannelDatabase& database, ChannelsConf const& list,
                           ImportProgress const& progress) {
    Transaction transaction(database);
    if (database.value("SELECT count(*) FROM FavoriteList") != "0")
        throw std::runtime_error("the database holds lists already");
    Importer importer(database, list);
    importer.addInputs();
    std::size_t done = 0;
    for (bool const isSecond : {false, true}) {  // what may show a service of the first
        for (Channel const& channel : list.channels) {
            if ((channel.isReference || importer.favIndexOf(channel) != 0) != isSecond)
                continue;
            importer.add(channel);
            if (progress)
                progress(++done, list.channels.size());
        }
    }
    importer.finish();
    transaction.commit();
    return importer.services();
}

}  // namespace channel_database
