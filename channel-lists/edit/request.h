// The request that the library's edit takes, and its answer.
#pragma once

#include <string>
#include <vector>

#include "database/list_naming.h"
#include "lists/list_content.h"

namespace channel_lists {

// The complete new content of a FAV list. Throws Failure when an entry has no channel number, and
// so does the other request.
std::vector<std::string> favListRequest(List const& list, std::vector<Entry> const& after);

// The entries of another list that differ. With `renumber`, entries that are hidden or restored ask
// for the renumbering of the FAV lists that hold them.
std::vector<std::string> otherListRequest(List const& list, std::vector<Entry> const& before,
                                          std::vector<Entry> const& after, bool renumber);

// Hands the request to the library; throws Failure that explains a negative answer.
int submit(std::vector<std::string> const& request);

}  // namespace channel_lists
