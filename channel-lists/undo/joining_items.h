// What entries that join a list again bring along.
#pragma once

#include <string>
#include <vector>

#include "lists/stored_items.h"

namespace channel_lists {

// While the object lives, an entry that the library adds to the list gets the flags and the origin
// that its kept item has, in the edit's own transaction: a request names none of them.
class JoiningItems {
  public:
    JoiningItems();
    ~JoiningItems();
    JoiningItems(JoiningItems const&) = delete;
    JoiningItems& operator=(JoiningItems const&) = delete;

    void add(std::string const& listUuid, StoredItem const& item);
};

}  // namespace channel_lists
