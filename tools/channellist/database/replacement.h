// A copy of a whole database in place of its content.
#pragma once

#include <string>

namespace tool {

struct Replacement {
    bool dryRun = false;
    std::string command;  // for "undo --list"; "" keeps nothing for it
};

// Gives `database` the content of the database `file`, and tells what changes. Throws Failure or
// std::runtime_error; nothing is written then.
void bringBack(std::string const& file, std::string const& database,
               Replacement const& replacement);

}  // namespace tool
