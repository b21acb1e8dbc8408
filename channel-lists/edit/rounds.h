// One command that takes several rounds of writes, beside others that write.
#pragma once

#include "edit/write_list.h"

namespace channel_lists {

// What a round wrote, on top of those before it.
void add(Written const& written, Written& total);

// The lists as the next round sees them, within its FrozenDatabase. What others wrote since is in
// both sides then: it is neither told nor taken back.
void follow(Snapshot const& now, Written& total);

}  // namespace channel_lists
