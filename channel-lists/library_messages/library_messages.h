// The library's own messages: this program takes the place of the platform's debug library in its
// own process, on a set too. Errors wait until it is clear whether the command fails.
#pragma once

#include <string>
#include <vector>

namespace channel_lists {

// From now on the listener gets messages at once: errors, and what `levels` opens (see --trace).
void traceMessages(std::string const& levels);

// The reasons that errors gave, each once, without their place in the library: of a command that
// fails. None where they were traced.
std::vector<std::string> const& messageReasons();

// Forgets them: of a failure that is met by other means.
void forgetMessages();

// The last of them that gives a reason of SQLite's, "" without one.
std::string lastMessage();

}  // namespace channel_lists
