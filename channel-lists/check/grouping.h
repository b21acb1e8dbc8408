// One finding for what many rows share.
#pragma once

#include <string>
#include <vector>

#include "check/finding.h"

namespace channel_lists {

// "FavoriteItem 812, 813": what stands in front of the keys, "FavoriteItem ", and the keys.
struct RowName {
    std::string table;
    std::vector<std::string> keys;  // none where the row is not named by numbers
};

RowName rowName(std::string const& row);

// Findings of one rule that say the same of rows of one table become the first of them, with the
// keys of all.
Findings grouped(Findings const& findings);

}  // namespace channel_lists
