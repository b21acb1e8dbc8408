// Which list a word on the command line means.
#pragma once

#include <string>
#include <vector>

namespace tool {

struct List {
    unsigned int pid = 0;
    std::string uuid;
    std::string name;
    std::string creator;
    int favIndex = 0;  // 1 to 4 for FAV1 to FAV4 as edits count them, else 0
};

// Every list of the open database, also those that viewers cannot browse.
std::vector<List> allLists();

// The list whose uuid is `word`, or the only one that is called so: by its name, by FAV1 to FAV4,
// or "all" and "av" for the lists of all services and of the inputs. Throws Failure.
List findList(std::string const& word);

// Whether it is the list of all services.
bool isAllList(List const& list);

// The list's name for a reader: FAV1 to FAV4, else the stored name, else the uuid.
std::string displayName(List const& list);

}  // namespace tool
