// The entries that a word of the command line means.
#pragma once

#include <string>
#include <vector>

#include "lists/list_content.h"

namespace channel_lists {

// Whether the word can mean several: "200-209", "30-" or a name with * and ?.
bool isBlock(std::string const& word);

// Those at the numbers of "200-209" or "30-", or whose name "RTL*" fits, case aside, in the order
// of their numbers. Of hidden and shown ones it is the hidden ones if `hidden`, else the shown
// ones. An entry whose name is the word itself is meant alone; of any other word see findEntry.
// Throws Failure when there is none.
std::vector<std::size_t> findEntries(std::vector<Entry> const& entries, std::string const& word,
                                     std::string const& listName, bool hidden = false);

// The place in `entries` of the service that `word` means: digits are a channel number, "id:N" is
// the database key, anything else a uuid or name, case aside where none has it to the letter. When
// hidden and shown entries are meant alike, it is the hidden ones if `hidden`, else the shown ones.
// Throws Failure, naming the candidates when there are several.
std::size_t findEntry(std::vector<Entry> const& entries, std::string const& word,
                      std::string const& listName, bool hidden = false);

}  // namespace channel_lists
