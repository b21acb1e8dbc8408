// Which namespace a receiver gives a service.
#include <channel-database/enigma2.h>

#include <cstdlib>

namespace channel_database {
namespace {

std::string transponderIds(Channel const& channel) {
    return channel.source + "-" + std::to_string(channel.networkId) + "-" +
           std::to_string(channel.transportStreamId);
}

std::string serviceIds(Channel const& channel) {
    return transponderIds(channel) + "-" + std::to_string(channel.serviceId);
}

}  // namespace

Namespaces::Namespaces(std::vector<Channel> const& lamedb) {
    for (Channel const& channel : lamedb) {
        Carrier const carrier{channel.frequencyInKHz(), channel.place.value_or(0)};
        services_.emplace(serviceIds(channel), carrier);
        transponders_.emplace(transponderIds(channel), carrier);
    }
}

std::optional<std::uint32_t> Namespaces::of(Channel const& channel) const {
    for (bool const isService : {true, false}) {
        auto const [first, last] = isService ? services_.equal_range(serviceIds(channel))
                                             : transponders_.equal_range(transponderIds(channel));
        Carrier const* nearest = nullptr;
        int const kHz = channel.frequencyInKHz();
        for (auto carrier = first; carrier != last; ++carrier)
            if (nearest == nullptr ||
                std::abs(carrier->second.kHz - kHz) < std::abs(nearest->kHz - kHz))
                nearest = &carrier->second;
        if (nearest != nullptr)
            return nearest->place;
    }
    return std::nullopt;
}

}  // namespace channel_database
