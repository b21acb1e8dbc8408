// The last word of a command that wrote.
#pragma once

#include <string>

namespace tool {

// Prints the line. Throws Failure when it cannot be printed, as what is committed is written,
// whatever becomes of the output.
void printWritten(std::string const& line);

}  // namespace tool
