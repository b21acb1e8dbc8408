// What of a database is compared with another one.
#pragma once

#include <map>
#include <string>

#include "lists/difference.h"

namespace channel_lists {

struct ComparedService {
    std::string uuid, triplet, name, kind, delivery;
    std::string transponder;  // delivery, satellite, frequency ..., network and stream
};

struct ComparedContent {
    Snapshot lists;
    std::map<unsigned int, ComparedService> services;  // of all lists, by key
    bool complete = true;                              // see Rows
};

// Of the open database.
ComparedContent readForComparison();

}  // namespace channel_lists
