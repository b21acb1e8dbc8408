// What an edit changed, or would change, in the lists that it reaches.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "lists/list_content.h"
#include "lists/stored_items.h"
#include "text/json_text.h"

namespace channel_lists {

struct ListEntries {
    std::string uuid;
    std::string listName;
    std::vector<Entry> entries;
    bool isFav = true;
    std::vector<StoredItem> items = {};  // of the same moment, where somebody asked for them
};

// The edited list, if one has its key, and the FAV lists.
using Snapshot = std::vector<ListEntries>;

// The lists that an edit of one reaches: of FAV1 to FAV4 itself, else these and itself.
Snapshot takeSnapshot(List const& edited);

// Adds those of `lists` that `all` does not hold.
void addMissing(Snapshot const& lists, Snapshot& all);

struct Change {
    std::string listName;
    std::vector<std::string> what;  // "added", "removed", "moved", "hidden", "restored"
    std::string before, after;      // channel numbers, "" where there is none
    std::string name;
    unsigned int serviceId;
    // Of an entry that moved because another one came, went or was moved past it: the key of that
    // one's service.
    std::optional<unsigned int> cause;
};

std::vector<Change> differences(Snapshot const& before, Snapshot const& after);

// As a person is told of them: where three and more follow one entry, that one alone, with "those
// between follow".
std::vector<Change> told(std::vector<Change> const& changes);

Json differencesJson(std::vector<Change> const& changes);

}  // namespace channel_lists
