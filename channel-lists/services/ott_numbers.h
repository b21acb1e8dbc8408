// The channel numbers that OTT channels hold in the FAV lists.
#pragma once

#include <vector>

namespace channel_lists {

// Of FAV`favIndex`, 1 to 4. Throws Failure when the OTT database cannot be searched.
std::vector<unsigned int> ottNumbers(int favIndex);

}  // namespace channel_lists
