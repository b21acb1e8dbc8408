// Channel numbers of formats that give some channels one.
#pragma once

#include <channel-database/channels_conf.h>

#include <set>
#include <vector>

namespace channel_database {

/// Of the channels that want one number the first gets it; all others fill the gaps.
inline void giveNumbers(std::vector<Channel>& channels) {
    std::set<int> taken;
    for (Channel& channel : channels)
        channel.number = channel.mark > 0 && taken.insert(channel.mark).second ? channel.mark : 0;
    int next = 1;
    for (Channel& channel : channels) {
        if (channel.number != 0)
            continue;
        while (!taken.insert(next).second)
            ++next;
        channel.number = next;
    }
}

}  // namespace channel_database
