// Services as the list of an Enigma2 receiver, in version 4 of its format.
#include <channel-database/enigma2.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <tuple>

#include "enigma2_ids.h"
#include "lamedb_numbers.h"

namespace channel_database {
namespace {

constexpr int kQpsk = 2;

std::string joined(std::initializer_list<std::int64_t> numbers) {
    std::string text;
    for (std::int64_t const number : numbers)
        text += (text.empty() ? "" : ":") + std::to_string(number);
    return text;
}

std::int64_t inversionOf(Channel const& channel) {
    return channel.parameter('I') == 1 ? kLamedbInverted : kLamedbInversionUnknown;
}

std::int64_t symbolsPerSecond(Channel const& channel) {
    return std::int64_t{channel.symbolRate} * 1000;
}

std::string satelliteText(Channel const& channel) {
    int const modulation = channel.parameter('M');
    bool const isSecond = channel.delivery() == Delivery::DvbS2;
    std::string text = "s " + joined({channel.frequencyInKHz(), symbolsPerSecond(channel),
                                      placeOf(kLamedbPolarizations, channel.polarization),
                                      placeOf(kLamedbCodeRates, channel.parameter('C')),
                                      enigma2Position(channel), inversionOf(channel), 0});
    if (isSecond || modulation != kQpsk)  // the plain DVB-S line ends here
        text += ":" + joined({isSecond ? 1 : 0, placeOf(kLamedbSatelliteModulations, modulation), 0,
                              kLamedbInversionUnknown});
    return text;
}

std::string cableText(Channel const& channel) {
    return "c " + joined({channel.frequencyInKHz(), symbolsPerSecond(channel), inversionOf(channel),
                          placeOf(kLamedbCableModulations, channel.parameter('M')), 0, 0, 0});
}

std::string terrestrialText(Channel const& channel) {
    constexpr int kAutomaticMode = 2;  // of transmission
    constexpr int kAutomatic = 4;      // guard interval, hierarchy
    bool const isSecond = channel.delivery() == Delivery::DvbT2;
    int const codeRate = placeOf(kLamedbTerrestrialCodeRates, channel.parameter('C'));
    return "t " + joined({std::int64_t{channel.frequencyInKHz()} * 1000,
                          placeOf(kLamedbBandwidths, channel.parameter('B')), codeRate,
                          placeOf(kLamedbTerrestrialCodeRates, 0),
                          placeOf(kLamedbTerrestrialModulations, channel.parameter('M')),
                          kAutomaticMode, kAutomatic, kAutomatic, inversionOf(channel), 0,
                          isSecond ? 1 : 0, isSecond ? channel.parameter('P') : 0});
}

std::string transponderLine(Channel const& channel) {
    switch (channel.source[0]) {
        case 'C':
            return cableText(channel);
        case 'T':
            return terrestrialText(channel);
        default:
            return satelliteText(channel);
    }
}

std::string padded(std::uint32_t number, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*x", digits, static_cast<unsigned>(number));
    return text;
}

std::string hexadecimal(int id) { return padded(static_cast<std::uint32_t>(id), 4); }

class LamedbWriter {
  public:
    void add(Channel const& channel) {
        std::string const stream =
            hexadecimal(channel.transportStreamId) + ":" + hexadecimal(channel.networkId);
        std::string const place = placeOfTransponder(channel, stream);
        services_ += hexadecimal(channel.serviceId) + ":" + place + ":" + stream + ":" +
                     std::to_string(serviceType(channel)) + ":0:0\n" + channel.name +
                     "\np:" + channel.provider;
        for (int const id : channel.conditionalAccess)
            services_ += ",C:" + hexadecimal(id == kUnknownAccess ? 0 : id);
        services_ += "\n";
    }

    std::string text() const {
        return "eDVB services /4/\ntransponders\n" + transponders_ + "end\nservices\n" + services_ +
               "end\n";
    }

  private:
    // Transponders of one satellite and the same ids differ in the low half of their place.
    std::string placeOfTransponder(Channel const& channel, std::string const& stream) {
        std::uint32_t const high = enigma2Place(channel);
        std::string const line = transponderLine(channel);
        auto const [known, isNew] = places_.try_emplace({high, stream, line});
        if (isNew) {
            known->second = padded(high + counts_[{high, stream}]++, 8);
            transponders_ += known->second + ":" + stream + "\n\t" + line + "\n/\n";
        }
        return known->second;
    }

    std::map<std::tuple<std::uint32_t, std::string, std::string>, std::string> places_;
    std::map<std::tuple<std::uint32_t, std::string>, std::uint32_t> counts_;
    std::string transponders_;
    std::string services_;
};

}  // namespace

std::string formatLamedb(std::vector<Channel> const& channels) {
    LamedbWriter writer;
    for (Channel const& channel : channels)
        if (channel.delivery() != Delivery::DvbC2)
            writer.add(channel);
    return writer.text();
}

}  // namespace channel_database
