// The rows of a list, those that the library does not deliver, too.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace channel_lists {

struct StoredItem {
    std::int64_t service = 0;
    std::string uuid;  // of the service; "" without one
    std::optional<std::int64_t> number, hidden, visible, selectable, original;
    std::string originalList;  // the uuid of the list that `original` is the key of; "" for none
};

// Of the open database. Throws Failure.
std::vector<StoredItem> storedItems(std::string const& listUuid);

}  // namespace channel_lists
