// Tells a person at a terminal that the command waits for another process, and for which file.
#pragma once

#include <string>

namespace tool {

// From now on SQLite's sleeps, which are all for locks, are waits for `file`.
void tellWaitsFor(std::string const& file);

}  // namespace tool
