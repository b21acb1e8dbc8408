// Texts compared as a person does.
#pragma once

#include <string>

namespace channel_lists {

// What a terminal shows of `text`, without regard to case, width and composition, in any script.
std::string folded(std::string const& text);

// How many characters have to be changed, added, removed, or swapped with the next one, to make
// `to` of `from`.
std::size_t editDistance(std::string const& from, std::string const& to);

}  // namespace channel_lists
