// What somebody may have meant.
#pragma once

#include <string>
#include <vector>

namespace channel_lists {

// "; did you mean 'arte HD' or 'ARTE'?": the names that hold the word or that a slip of the fingers
// makes of it, the nearest first; "" when there is none.
std::string didYouMean(std::string const& word, std::vector<std::string> const& names);

}  // namespace channel_lists
