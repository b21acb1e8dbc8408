// The edit of a FAV list: the difference between the entries and the stored items.
#ifndef CHANNELLIST_DB_ACCESS_FAV_LIST_EDIT_H
#define CHANNELLIST_DB_ACCESS_FAV_LIST_EDIT_H

#include <cstdint>
#include <string>
#include <vector>

#include "db_access/edit_outcome.h"
#include "db_access/statement.h"

namespace channellist {

// What an edit changes. Services match by id alone, and repeats are kept.
struct FavListPlan {
    struct Update {
        std::uint32_t serviceId;
        std::uint32_t channelNumber;
        std::uint8_t deleted;
    };
    struct Addition {
        std::uint32_t serviceId;
        std::uint32_t channelNumber;
    };
    std::vector<Update> updates;          // entries of stored services, in entry order
    std::vector<Addition> additions;      // entries of other services, in entry order
    std::vector<std::uint32_t> removals;  // stored services that no entry names, in stored order
    int itemsWithoutService = 0;          // stored, left where they are: no entry can mean them
};

// Reads the stored items and converts the entries; writes nothing. Done, Failed when the items
// cannot be read, or Malformed.
EditOutcome planFavListEdit(unsigned int favoriteListId, std::vector<std::string> const& arguments,
                            FavListPlan& plan);

// Writes the plan inside the open transaction. `favIndex` is 1 to 4. Done, SameServices, or Failed:
// the caller rolls back.
EditOutcome writeFavListEdit(unsigned int favoriteListId, unsigned int favIndex,
                             FavListPlan const& plan, Statement& itemUpdate);

}  // namespace channellist

#endif
