// The keys that services have now.
#pragma once

#include <limits>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lists/list_content.h"
#include "lists/stored_items.h"

namespace channel_lists {

// Brings entries of an earlier moment to the keys of today, by the uuids of their services: a scan
// deals new keys.
class CurrentKeys {
  public:
    // Of the open database. Throws Failure.
    CurrentKeys();

    // Of a service without a uuid the key stays. One that is gone is none of those that have its
    // key now: it gets one that no service has, always the same.
    void giveTo(std::vector<Entry>& entries);
    void giveTo(std::vector<StoredItem>& items);

  private:
    unsigned int keyOf(unsigned int key, std::string const& uuid);

    std::set<std::pair<unsigned int, std::string>> current_;
    std::map<std::string, unsigned int> keys_;
    unsigned int unused_ = std::numeric_limits<unsigned int>::max();
};

}  // namespace channel_lists
