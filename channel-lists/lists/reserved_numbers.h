// The numbers of a FAV list that belong to OTT channels.
#pragma once

#include <cstdint>
#include <set>

#include "database/list_naming.h"

namespace channel_lists {

// None for a list that is no FAV list, and, with a note to the listener, when the OTT database
// cannot be searched.
std::set<std::int64_t> reservedNumbers(List const& list);

}  // namespace channel_lists
