// What an edit changed, or would change, in the lists that it reaches.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "lists/list_content.h"
#include "text/json_text.h"

namespace channel_lists {

struct ListEntries {
    std::string uuid;
    std::string listName;
    std::vector<Entry> entries;
    bool isFav = true;
};

// The edited list, if one has its key, and the FAV lists.
using Snapshot = std::vector<ListEntries>;

Snapshot takeSnapshot(List const& edited);

struct Change {
    std::string listName;
    std::vector<std::string> what;  // "added", "removed", "moved", "hidden", "restored"
    std::string before, after;      // channel numbers, "" where there is none
    std::string name;
    unsigned int serviceId;
};

std::vector<Change> differences(Snapshot const& before, Snapshot const& after);

Json differencesJson(std::vector<Change> const& changes);

}  // namespace channel_lists
