// The numbers of a FAV list that belong to OTT channels.
#pragma once

#include <cstdint>
#include <set>

#include "database/list_naming.h"

namespace tool {

// None for a list that is no FAV list, and, with a word on standard error, when the OTT database
// cannot be searched.
std::set<std::int64_t> reservedNumbers(List const& list);

}  // namespace tool
