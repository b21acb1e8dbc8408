#include <channel-database/import.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "set_numbers.h"

namespace channel_database {
namespace {

constexpr int kFavLists = 4;
constexpr int kAstraPosition = 192;
constexpr int kAstraNetwork = 1;
constexpr int kNoNetwork = -1;  // of a list whose services come from many
constexpr char const* kInputs[] = {"hdmi1", "hdmi2",  "hdmi3",    "hdmi4",    "AV1",      "AVS",
                                   "PC IN", "ANALOG", "SPDIF IN", "SCART AV", "COMPONENT"};

/// Low and high band of the universal LNB, whose switching frequency is 11.7 GHz.
int bandNumber(int kHz) {
    if (kHz < 10700000 || kHz > 12750000)
        return 0;
    return kHz < 11700000 ? 1 : 2;
}

/// VDR's list says nothing about the picture, so the name has to: "ZDF HD", "Ultra HD", "UHD1".
bool isHighDefinition(Channel const& channel) {
    bool const isNamedSo = channel.name.find("HD") != std::string::npos;
    return !channel.isRadio() && (channel.highDefinition || isNamedSo);
}

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

  private:
    void addChannel(Channel const& channel) {
        Service service = makeService(channel);
        services_.emplace(channelId(channel), service);
        Id const delivery = deliveryList(channel);
        put(channel, delivery, service, channel.number);
        put(channel, all_, service, channel.number).original(delivery);
        if (channel.orbitalPosition() == kAstraPosition) {
            Id const astra = listOf("servicelist://tamun.Astra 19.2°E", "Astra 19.2°E",
                                    "astra-19.2e", kAstraNetwork);
            put(channel, astra, service, channel.number);
        }
        if (channel.group >= 0 && favIndexOf(channel) == 0)
            addToGroup(channel, service, delivery);
    }

    /// A channel that stands elsewhere in the list, too, is one service.
    void addFavourite(Channel const& channel) {
        if (services_.count(channelId(channel)) == 0) {
            if (channel.isReference)
                return;  // to a service that the list does not have
            Channel shown = channel;
            shown.hidden = false;
            addChannel(shown);
        }
        int const index = favIndexOf(channel);
        Id const fav = lists_.at("fav" + std::to_string(index));
        Service& service = services_.at(channelId(channel));
        Id const number = channel.mark != 0 ? channel.mark : counts_[fav] + 1;
        if (!channel.hidden)
            counts_[fav] = number;
        put(channel, fav, service, number).original(deliveryList(channel));
        service.favTag(index);
    }

    /// A group of references shows services that stand elsewhere.
    void addReference(Channel const& channel) {
        auto const known = services_.find(channelId(channel));
        if (known != services_.end())
            addToGroup(channel, known->second, deliveryList(channel));
    }

    Item put(Channel const& channel, Id list, Service const& service, Id number) {
        Item item = database_.put(list, service, number);
        if (channel.hidden)
            item.deleted();
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
        switch (channel.source[0]) {
            case 'T':
                return listOf("servicelist://tamun.dvbt", "DVB-T", "dvbt");
            case 'C':
                return listOf("servicelist://tamun.dvbc", "DVB-C", "dvbc");
            default:
                return listOf("servicelist://tamun.dvbs", "DVB-S", "dvbs");
        }
    }

    void addToGroup(Channel const& channel, Service& service, Id delivery) {
        std::string const kind = channel.isRadio() ? "radio" : "tv";
        std::string const number = std::to_string(channel.group + 1);
        Id const user =
            listOf("User." + kind + "." + number, groupOf(channel), "user-" + kind + "-" + number);
        put(channel, user, service, ++counts_[user]).original(delivery);
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
        if (isHighDefinition(channel))
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

    static std::string channelId(Channel const& channel) {
        // Lists without ids know a transponder by its frequency alone.
        bool const hasIds = channel.networkId != 0 || channel.transportStreamId != 0;
        int const transponder =
            hasIds ? channel.transportStreamId : channel.frequencyInKHz() / 1000;
        std::string id = channel.source + "-" + std::to_string(channel.networkId) + "-" +
                         std::to_string(transponder) + "-" + std::to_string(channel.serviceId);
        if (channel.radioId != 0)
            id += "-" + std::to_string(channel.radioId);
        return id;
    }

    /// The channel id; "#2" and so on behind it when the list names the channel again.
    std::string newUuid(Channel const& channel) {
        std::string const id = channelId(channel);
        int const occurrence = ++uuids_[id];
        return occurrence == 1 ? id : id + "#" + std::to_string(occurrence);
    }

    ChannelDatabase& database_;
    ChannelsConf const& list_;
    std::map<std::string, Id> lists_;          // by uuid
    std::map<std::string, Id> tuners_;         // by transponder
    std::map<std::string, Service> services_;  // by channel id, the first of each
    std::map<std::string, int> uuids_;
    std::map<Id, Id> counts_;  // of the items of the lists that count from 1
    Id all_;
    Id av_;
};

}  // namespace

void importChannels(ChannelDatabase& database, ChannelsConf const& list,
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
}

}  // namespace channel_database
