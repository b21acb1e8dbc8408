// Which list a word on the command line means.
#pragma once

#include <string>
#include <vector>

namespace channel_lists {

struct List {
    unsigned int pid = 0;
    std::string uuid;
    std::string name;
    std::string creator;
    int favIndex = 0;  // 1 to 4 for FAV1 to FAV4 as edits count them, else 0
};

// What the help of a command says of its LIST.
constexpr char kListHelp[] =
    "FAV1 to FAV4, all, inputs, a uuid, or a name or part of one that only one list has";

// Every list of the open database, also those that viewers cannot browse.
std::vector<List> allLists();

// FAV1 to FAV4, "all", and "inputs" ("av") mean these lists; else the list whose uuid is `word`;
// else the only one of that name; else the only one whose name differs in case alone, or that holds
// `word`. Throws Failure, which tells what may have been meant.
List findList(std::string const& word);

// The list of all services. Throws Failure when there is none.
List allServicesList();

// Whether it is the list of all services.
bool isAllList(List const& list);

// The list's name for a reader, which findList takes: FAV1 to FAV4, "all", "inputs", else the
// stored name, else the uuid.
std::string displayName(List const& list);

}  // namespace channel_lists
