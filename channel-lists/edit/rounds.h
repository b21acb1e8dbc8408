// One command that takes several rounds of writes, beside others that write.
#pragma once

#include <vector>

#include "edit/write_list.h"

namespace channel_lists {

// Adds what a round writes to those before it; false when others came in between. Throws as
// writeLists does.
bool writeRound(std::vector<ListEdit> edits, Written& total);

// The lists as the next round sees them, within its FrozenDatabase. What others wrote since is in
// both sides then: it is neither told nor taken back.
void follow(Snapshot const& now, Written& total);

// Behind the last one: what the store kept before the first is kept of all of them.
void keepRounds(Written const& total, UndoStore& store);

}  // namespace channel_lists
