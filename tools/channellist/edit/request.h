// The request that the library's edit takes, and its answer.
#pragma once

#include <string>
#include <vector>

#include "database/list_naming.h"
#include "edit/list_content.h"

namespace tool {

// The complete new content of a FAV list. Throws Failure when an entry has no channel number, and
// so does the other request.
std::vector<std::string> favListRequest(const List& list, const std::vector<Entry>& after);

// The entries of another list that differ. With `renumber`, entries that are hidden or restored ask
// for the renumbering of the FAV lists that hold them.
std::vector<std::string> otherListRequest(const List& list, const std::vector<Entry>& before,
                                          const std::vector<Entry>& after, bool renumber);

// Hands the request to the library; throws Failure that explains a negative answer.
int submit(const std::vector<std::string>& request);

// Closes the gaps in the numbers of a FAV list, around its OTT channels, in one transaction.
void renumber(const List& favList);

}  // namespace tool
