// The table of what an edit changed.
#pragma once

#include <iostream>
#include <vector>

#include "lists/difference.h"
#include "output/text_table.h"
#include "tool.h"

namespace tool {

// Of the table that printDifferences prints, for the help of a command that calls it.
std::vector<Column> differenceColumns();
void printDifferences(std::vector<Change> const& changes, std::ostream& out = std::cout);

}  // namespace tool
