// Tells the front end of a wait for another process, and for which file.
#pragma once

#include <string>

namespace channel_lists {

// From now on SQLite's sleeps, which are all for locks, are waits for `file`.
void tellWaitsFor(std::string const& file);

}  // namespace channel_lists
