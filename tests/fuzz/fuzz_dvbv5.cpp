// Channel files of libdvbv5: what is read of any text is written so that it reads as the same.
#include <channel-database/dvbv5.h>

#include <cstdint>
#include <cstdlib>
#include <sstream>

using namespace channel_database;

namespace {

ChannelsConf parsed(std::string const& text) {
    std::istringstream stream(text);
    return parseDvbv5(stream);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    ChannelsConf const list = parsed(std::string(reinterpret_cast<char const*>(data), size));
    std::string text;
    for (Channel const& channel : list.channels)
        text += formatDvbv5(channel);
    ChannelsConf const again = parsed(text);
    if (again.channels.size() != list.channels.size())
        std::abort();
    for (std::size_t i = 0; i < list.channels.size(); ++i)
        if (again.channels[i].serviceId != list.channels[i].serviceId ||
            again.channels[i].source != list.channels[i].source ||
            again.channels[i].number != list.channels[i].number)
            std::abort();
    return 0;
}
