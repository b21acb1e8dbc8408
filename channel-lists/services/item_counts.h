// How much the lists hold.
#pragma once

#include <cstdint>
#include <map>

namespace channel_lists {

// Entries by the key of their list, hidden ones included.
std::map<unsigned int, std::int64_t> itemCounts();

}  // namespace channel_lists
