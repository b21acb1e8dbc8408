// Which services of a list are shown, and in which order.
#pragma once

#include <channellist-access/result_rows.h>

#include <string>
#include <vector>

namespace channel_lists {

struct ServiceFilter {
    bool tv = false, radio = false, hd = false, free = false, scrambled = false, hidden = false;
    std::string delivery;            // "satellite", ...; "" for every
    std::string satellite, network;  // their numbers
    std::string frequency;           // in MHz
    std::string provider;            // a part of its name
    std::string match;               // a part of the name, whatever its case
    std::string sort;                // "number", "name" or "triplet"; "" keeps the set's order

    bool isSet() const;
};

// The services that all that is set fits. Throws Failure for an unknown delivery or order, and for
// a provider where the database tells of none.
std::vector<ResultRow> filtered(std::vector<ResultRow> services, ServiceFilter filter);

}  // namespace channel_lists
