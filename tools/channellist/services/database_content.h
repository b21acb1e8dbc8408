// Every list of a database with its services, read through the library.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "services/service_reader.h"

namespace tool {

struct ListContentRows {
    List list;
    std::vector<ResultRow> rows;
};

// The lists in the order of the database.
std::vector<ListContentRows> readAllLists();

// A service and where it stands.
struct ServicePlaces {
    ResultRow service;                // as its first list has it
    std::vector<std::string> places;  // "FAV1 3", "all 7 (hidden)"
};

// By the database key.
std::map<std::int64_t, ServicePlaces> placesOfServices(std::vector<ListContentRows> const& lists);

}  // namespace tool
