// A copy of a whole database in place of its content.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace channel_lists {

struct Replacement {
    bool dryRun = false;
    std::string command;               // for "undo --list"; "" keeps nothing for it
    int undoes = 0;                    // the kept copy that is taken back
    std::vector<int> alongside = {};   // the later ones that go with it
    std::function<void()> check = {};  // throws where what the database holds is not to be replaced
};

// Gives `database` the content of the database `file`, which is examined first. What changes comes
// back as a text, "" for a new file. Throws Failure or std::runtime_error; nothing is written then.
std::string bringBack(std::string const& file, std::string const& database,
                      Replacement const& replacement);

}  // namespace channel_lists
