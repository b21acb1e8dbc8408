// Services hidden or restored in every list that holds them.
#pragma once

#include <utility>
#include <vector>

#include "edit/list_edit.h"
#include "lists/operations.h"

namespace channel_lists {

// A service, and whether it is to be hidden.
using Mark = std::pair<Entry, bool>;

// What the operations, hide and restore alone, mean of the services of the seen list.
std::vector<Mark> marksOf(SeenList const& seen, std::vector<Operation> const& operations);

// What they make of all lists, by whatever keys the services have by now. Call it within one
// FrozenDatabase.
std::vector<ListEdit> editsEverywhere(std::vector<Mark> const& marks, bool renumber);

}  // namespace channel_lists
