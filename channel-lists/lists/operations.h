// The operations of an edit, as words of the command line.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lists/list_content.h"

namespace channel_lists {

enum class Verb { Add, Remove, Move, Hide, Restore, Swap, Sort, Copy };

struct Operation {
    Verb verb;
    std::string service;                 // or several; of `sort` the range, of `copy` the list
    std::optional<std::int64_t> number;  // of `add ... at` and `move ... to`
    std::string other;                   // of `swap` the other service, of `sort` the order
};

// Reads "add SERVICE [at NUMBER] | remove SERVICE | move SERVICE to NUMBER | hide SERVICE |
// restore SERVICE | swap SERVICE SERVICE | sort by name|number|provider [RANGE] | copy LIST [to
// LIST] [at NUMBER] ..."; `list` is the edited one. Throws Failure (kUsage).
std::vector<Operation> parseOperations(std::vector<std::string> const& words,
                                       std::string const& list);

// What operations take from elsewhere in the database.
struct Material {
    std::vector<Entry> all;  // the services that can be added, and their own order
    std::map<std::string, std::vector<Entry>> copied;  // by the word that names the list
    std::map<unsigned int, std::string> providers;     // by the key of the service
};

// What these operations take. Throws Failure for what the database does not have.
Material gather(std::vector<Operation> const& operations);

// Does the operations one after the other.
void apply(std::vector<Operation> const& operations, Material const& material,
           ListContent& content);

}  // namespace channel_lists
