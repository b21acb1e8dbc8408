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

// Brings a FAV list to `after`. Entries that join are shown at first, and hidden by a second
// request.
void submitFavList(List const& list, std::vector<Entry> const& before,
                   std::vector<Entry> const& after);

// Closes the gaps in the numbers of a FAV list, around its OTT channels, in one transaction. Writes
// nothing when there are none.
void renumber(List const& favList);

}  // namespace channel_lists
