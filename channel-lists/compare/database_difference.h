// What differs between two databases.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "compare/compared_content.h"

namespace channel_lists {

// What can happen to a service, in a list or altogether.
constexpr char const* kHappenings[] = {"came",     "went",    "moved",  "hidden",
                                       "restored", "renamed", "retuned"};

// The services that each of them happened to.
using Tally = std::map<std::string, std::set<unsigned int>>;

struct ServiceChange {
    char const* what;  // "came", "went", "renamed" or "retuned"
    std::string name, triplet;
    std::string before, after;  // names or transponders
};

struct ListTally {
    std::string listName;
    char const* list;  // "came", "went", or "" for one that both have
    Tally tally;
};

struct DatabaseDifference {
    std::vector<Change> changes;  // of entries
    std::vector<ServiceChange> services;
    std::vector<ListTally> lists;  // those in which something happened
    Tally total;                   // came to and went from all lists, moved in any

    bool isNone() const { return changes.empty() && services.empty() && lists.empty(); }
};

DatabaseDifference differenceOf(ComparedContent const& old, ComparedContent now);

}  // namespace channel_lists
