// The text of a stream that may never end.
#pragma once

#include <cstddef>
#include <istream>
#include <string>

namespace channel_database {

// Memory is no place for what never ends.
constexpr std::size_t kLargestList = 64U << 20U;

// All of the stream. Throws std::runtime_error, which names it, where it is larger than any list or
// cannot be read to its end.
std::string limitedText(std::istream& in, std::string const& name);

}  // namespace channel_database
