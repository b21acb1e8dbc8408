// Two changes of one list, made without knowing of each other.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "lists/list_content.h"

namespace channel_lists {

// An entry that both changed, each to something else.
struct Conflict {
    Entry base;                // the entry both saw; of an entry that both added, theirs
    std::string theirs, mine;  // "moved to 7", "hidden", "removed"
};

struct Merge {
    std::vector<Entry> entries;  // theirs with mine on top; where they conflict, mine
    std::vector<Conflict> conflicts;
    std::vector<std::string> notes;  // on numbers that both gave away
};

// `base` is what both saw, `theirs` what the list holds now, `mine` what is wanted of `base`. The
// number of an entry and whether it is hidden are changed apart from each other. A number that I
// give to an entry and that another one holds by now goes to the next that is free; `reserved` ones
// never are. An entry is its service; of one that a list names several times, each in its turn.
Merge merge(std::vector<Entry> const& base, std::vector<Entry> const& theirs,
            std::vector<Entry> const& mine, std::set<std::int64_t> const& reserved);

}  // namespace channel_lists
