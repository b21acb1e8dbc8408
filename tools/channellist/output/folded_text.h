// Texts compared as a person does.
#pragma once

#include <string>

namespace tool {

// Without regard to case, width and composition, in any script.
std::string folded(std::string const& text);

// How many bytes have to be changed, added or removed to make `b` of `a`.
std::size_t editDistance(std::string const& a, std::string const& b);

}  // namespace tool
