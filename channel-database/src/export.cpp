#include <channel-database/export.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "enigma2_ids.h"
#include "set_numbers.h"

namespace channel_database {
namespace {

/// The numbers of a tuning URI, by name.
std::map<std::string, int> numbersOf(std::string_view uri) {
    std::map<std::string, int> numbers;
    uri.remove_prefix(std::min(uri.find('?'), uri.size()));
    while (!uri.empty()) {
        uri.remove_prefix(1);  // '?' or '&'
        std::string_view const part = uri.substr(0, uri.find('&'));
        uri.remove_prefix(part.size());
        auto const equals = part.find('=');
        if (equals != std::string_view::npos) {
            std::string_view const value = part.substr(equals + 1);
            int& number = numbers[std::string(part.substr(0, equals))];
            std::from_chars(value.data(), value.data() + value.size(), number);
        }
    }
    return numbers;
}

int toMHz(int kHz) { return std::max(1, static_cast<int>((std::int64_t{kHz} + 500) / 1000)); }

std::string oneLine(std::string text) {
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20)
            c = ' ';
    return text;
}

void setSource(std::map<std::string, int>& numbers, Delivery delivery, Channel& channel) {
    switch (delivery) {
        case Delivery::DvbT:
        case Delivery::DvbT2:
            channel.source = "T";
            break;
        case Delivery::DvbC:
        case Delivery::DvbC2:
            channel.source = "C";
            break;
        default:
            channel.source = orbitalSource(satellitePosition(numbers["satid"]));
            channel.polarization = polarizationLetter(numbers["polarization"]);
            break;
    }
}

void setParameters(std::map<std::string, int>& numbers, Delivery delivery, Channel& channel) {
    Modcod const modcod = delivery == Delivery::DvbS2
                              ? modcodOf(numbers["modcod"])
                              : Modcod{numbers["modulation"], numbers["coderate"]};
    std::pair<char, int> const parameters[] = {
        {'B', numbers["bandwidth"]},
        {'C', modcod.codeRate},
        {'I', numbers["inversion"]},
        {'M', modcod.modulation},
    };
    for (auto const& [letter, value] : parameters)
        if (value != 0)
            channel.parameters[letter] = value;
    if (delivery == Delivery::DvbT2 || delivery == Delivery::DvbC2)  // where 0 is a PLP, too
        channel.parameters['P'] = numbers["groupid"] << 8 | numbers["plpid"];
    bool const second =
        delivery == Delivery::DvbT2 || delivery == Delivery::DvbC2 || delivery == Delivery::DvbS2;
    if (second || channel.source[0] != 'C')
        channel.parameters['S'] = second ? 1 : 0;
}

bool isDvb(Delivery delivery) {
    return delivery >= Delivery::DvbT && delivery <= Delivery::DvbS2 && delivery != Delivery::Ip;
}

}  // namespace

std::optional<Channel> channelOf(StoredService const& service) {
    auto numbers = numbersOf(service.uri);
    auto const delivery = static_cast<Delivery>(numbers["frontend"]);
    if (!isDvb(delivery) || numbers["frequency"] <= 0)
        return std::nullopt;
    Channel channel;
    channel.name = oneLine(service.name);
    channel.symbolRate = numbers["symbolrate"];
    setSource(numbers, delivery, channel);
    channel.frequency = numbers["frequency"];
    setParameters(numbers, delivery, channel);
    channel.shortName = oneLine(service.shortName);
    channel.videoPid = service.radio ? "0" : service.highDefinition ? "8191=27" : "8191=2";
    channel.highDefinition = service.highDefinition;
    channel.audioPids = "0";
    channel.teletextPid = "0";
    if (service.encrypted)
        channel.conditionalAccess.push_back(kUnknownAccess);
    channel.serviceId = numbers["sid"];
    channel.networkId = numbers["onid"];
    channel.transportStreamId = numbers["tsid"];
    return channel;
}

std::optional<Channel> streamOf(StoredService const& service) {
    constexpr std::string_view kStart = "rec://plain/dvbip?url=";
    auto const end = service.uri.rfind("&frontend=5");
    if (service.uri.compare(0, kStart.size(), kStart) != 0 || end == std::string::npos ||
        end <= kStart.size())
        return std::nullopt;
    Channel channel;
    channel.source = "I";
    channel.url = oneLine(service.uri.substr(kStart.size(), end - kStart.size()));
    channel.name = oneLine(service.name);
    channel.videoPid = service.radio ? "0" : "8191";
    return channel;
}

std::string satelliteName(int number) {
    int const position = satellitePosition(number);
    std::string const source = orbitalSource(position);  // "S19.2E"
    return position == 0 ? "" : source.substr(1, source.size() - 2) + "°" + source.back();
}

std::vector<std::string> lossesOf(StoredService const& service) {
    auto numbers = numbersOf(service.uri);
    struct Loss {
        bool applies;
        char const* words;
    };
    int const satellite = numbers["satid"];
    Loss const losses[] = {
        {numbers["dvbtpriority"] != 0, "the hierarchy of DVB-T"},
        {numbers["datasliceid"] != 0, "the data slice of DVB-C2"},
        {numbers["slotconfig"] != 0, "the slot of the access module"},
        {satellite != 0 && satelliteNumber(satellitePosition(satellite)) != satellite,
         "the number of a satellite whose position is not known"},
    };
    std::vector<std::string> words;
    for (Loss const& loss : losses)
        if (loss.applies)
            words.emplace_back(loss.words);
    return words;
}

Channel inVdrUnits(Channel channel) {
    if (channel.source[0] == 'S')
        channel.frequency = toMHz(channel.frequency);
    return channel;
}

}  // namespace channel_database
