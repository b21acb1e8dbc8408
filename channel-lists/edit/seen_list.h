// A list as somebody saw it before they said what they want.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "lists/difference.h"
#include "lists/list_content.h"

namespace channel_lists {

struct SeenList {
    List list;
    std::vector<Entry> entries;
    std::set<std::int64_t> reserved;                            // numbers of OTT channels
    std::map<std::string, std::set<std::int64_t>> favReserved;  // of other lists: in FAV1 to FAV4
    std::size_t undelivered = 0;  // stored items that the library does not show
    Snapshot reached;             // what an edit of it reaches, itself among it, with the items
    std::string stored;           // see storedState
    std::map<std::string, std::string> reachedStates;  // the same of the lists that it reaches
};

// Call it, and what else the edit rests on, within one FrozenDatabase. Throws Failure for a list
// that cannot be read whole: an edit would lose the rest.
SeenList seeList(List const& list);

// What the database holds of a list and its services, for a comparison with a later moment: the
// same text as long as nobody changed an entry of it, or made another service of one.
std::string storedState(std::string const& listUuid);

}  // namespace channel_lists
