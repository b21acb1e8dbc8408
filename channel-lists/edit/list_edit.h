// What somebody wants of a list that they have seen.
#pragma once

#include <string>
#include <vector>

#include "edit/seen_list.h"

namespace channel_lists {

struct WantedList {
    std::vector<Entry> entries;
    // Closes the gaps in the numbers: of the list where it is FAV1 to FAV4, else of those of them
    // that hold a service that is hidden or restored.
    bool renumber = false;
};

// One list of a write.
struct ListEdit {
    SeenList seen;
    WantedList wanted;
};

// Whether both hold the same: entries of one service change places without a change.
bool areSame(std::vector<Entry> const& one, std::vector<Entry> const& other);
// The same, and of the same services: a scan may give a key to another one.
bool areOfSameServices(std::vector<Entry> const& one, std::vector<Entry> const& other);

// The lists that an edit reaches as it will leave them.
Snapshot expectedLists(ListEdit const& edit);
// Of several, one after the other.
Snapshot expectedLists(std::vector<ListEdit> const& edits);
// The lists that the edits reach, as they were seen.
Snapshot reachedBy(std::vector<ListEdit> const& edits);
// What the edit makes of the lists.
void expect(ListEdit const& edit, Snapshot& lists);

}  // namespace channel_lists
