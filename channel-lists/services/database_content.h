// Every list of a database with its services, read through the library.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "services/service_reader.h"

namespace channel_lists {

struct ListContentRows {
    List list;
    std::vector<ResultRow> rows;
};

struct DatabaseContent {
    std::vector<ListContentRows> lists;
    bool complete = true;  // see Rows
};

// The lists in the order of the database; those that a request can name.
DatabaseContent readAllLists();

struct ServicePlace {
    std::string listName, listUuid, number;
    bool isDeleted;
};

// A service and where it stands.
struct ServicePlaces {
    ResultRow service;  // as its first list has it
    std::vector<ServicePlace> places;
};

// By the database key.
std::map<std::int64_t, ServicePlaces> placesOfServices(std::vector<ListContentRows> const& lists);

}  // namespace channel_lists
