// The operations of an edit, as words of the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lists/list_content.h"

namespace channel_lists {

enum class Verb { Add, Remove, Move, Hide, Restore };

struct Operation {
    Verb verb;
    std::string service;
    std::optional<std::int64_t> number;  // of `add ... at` and `move ... to`
};

// Reads "add SERVICE [at NUMBER] | remove SERVICE | move SERVICE to NUMBER | hide SERVICE |
// restore SERVICE ...". Throws Failure (kUsage).
std::vector<Operation> parseOperations(std::vector<std::string> const& words);

// The place in `entries` of the service that `word` means: digits are a channel number, "id:N" is
// the database key, anything else a uuid or name. When hidden and shown entries are meant alike, it
// is the hidden ones if `hidden`, else the shown ones. Throws Failure, naming the candidates when
// there are several.
std::size_t findEntry(std::vector<Entry> const& entries, std::string const& word,
                      std::string const& listName, bool hidden = false);

// Does the operations one after the other; `all` holds the services that can be added.
void apply(std::vector<Operation> const& operations, std::vector<Entry> const& all,
           ListContent& content);

}  // namespace channel_lists
