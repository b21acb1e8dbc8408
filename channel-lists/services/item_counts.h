// How much the lists hold.
#pragma once

#include <cstdint>
#include <map>

namespace channel_lists {

struct ItemCount {
    std::int64_t entries = 0;  // hidden ones included
    std::int64_t hidden = 0;
};

// By the key of the list; none for one without entries.
std::map<unsigned int, ItemCount> itemCounts();

}  // namespace channel_lists
