// The numbers of a FAV list that belong to OTT channels.
#pragma once

#include <cstdint>
#include <set>

#include "database/list_naming.h"

namespace channel_lists {

enum class Tell { Nothing, Failures };

// None for a list that is no FAV list, and, with a note to the listener unless that is to be told
// nothing, when the OTT database cannot be searched.
std::set<std::int64_t> reservedNumbers(List const& list, Tell tell = Tell::Failures);

}  // namespace channel_lists
