// A copy of a whole database in place of its content.
#pragma once

#include <string>

namespace channel_lists {

struct Replacement {
    bool dryRun = false;
    std::string command;  // for "undo --list"; "" keeps nothing for it
};

// Gives `database` the content of the database `file`, which is examined first. What changes comes
// back as a text, "" for a new file. Throws Failure or std::runtime_error; nothing is written then.
std::string bringBack(std::string const& file, std::string const& database,
                      Replacement const& replacement);

}  // namespace channel_lists
