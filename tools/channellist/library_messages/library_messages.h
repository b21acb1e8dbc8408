// The library's own messages: this program takes the place of the platform's debug library in its
// own process, on a set too. Errors wait until it is clear whether the command fails.
#pragma once

#include <string>

namespace tool {

// From now on messages are written at once: errors, and what `levels` opens (see --trace).
void traceMessages(std::string const& levels);

// Writes the reasons that the errors of a command that failed gave, each once, without their place
// in the library. Nothing where they have been written already.
void explainByMessages();

// The last of them that gives a reason of SQLite's, "" without one.
std::string lastMessage();

}  // namespace tool
