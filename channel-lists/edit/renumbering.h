// Closing the gaps in the numbers of a FAV list.
#pragma once

#include "database/list_naming.h"

namespace channel_lists {

// Around its OTT channels, as it is behind the lock, in one transaction. False when there are no
// gaps: then nothing is written. Throws Failure; nothing is written then either, nor into a file
// that was replaced. Takes the library's mutex.
bool renumber(List const& favList);

}  // namespace channel_lists
