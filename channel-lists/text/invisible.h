// Characters that no reader sees.
#pragma once

#include <cstdint>

namespace channel_lists {

// Those that a terminal obeys all the same: other directions, breaks, ends of lines, tags. Joiners
// are letters to some scripts.
bool isInvisible(std::int32_t character);

}  // namespace channel_lists
