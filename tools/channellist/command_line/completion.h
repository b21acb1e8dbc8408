// What may stand where the cursor is, for the shells' completions: they ask by
//
//   channellist __complete INDEX WORD...
//
// with all words of the line behind the program, of which INDEX, counted from 1, is to be
// completed; it may be one behind the last. Candidates come a line each, whatever the word begins
// with; for "--option=VALUE" they are those of the value. ":files" alone says that files are due.
#pragma once

#include <string>
#include <vector>

namespace tool {

constexpr char kCompleteCommand[] = "__complete";

// A command and its options, "" for those of all commands.
struct CommandWords {
    struct Option {
        std::string name;
        bool takesValue = false;
    };
    std::string name;
    std::vector<Option> options;
};

// Never fails: without a database that can be read, its words are missing. `words` begins with the
// INDEX.
std::vector<std::string> completions(std::vector<CommandWords> const& commands,
                                     std::vector<std::string> const& words);

}  // namespace tool
