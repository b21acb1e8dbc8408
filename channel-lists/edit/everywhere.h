// Services hidden or restored in every list that holds them.
#pragma once

#include <vector>

#include "edit/write_list.h"
#include "lists/operations.h"

namespace channel_lists {

// What the operations, hide and restore alone, of services of the seen list make of all lists. Call
// it within one FrozenDatabase.
std::vector<ListEdit> editsEverywhere(SeenList const& seen,
                                      std::vector<Operation> const& operations, bool renumber);

}  // namespace channel_lists
