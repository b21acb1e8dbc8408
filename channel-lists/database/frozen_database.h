// Many reads of one state of the database.
#pragma once

#include <sqlite3.h>

#include "database/query.h"

namespace channel_lists {

// While the object lives, the library and every query read a copy in memory: the database as it was
// when the object was made, whatever others write meanwhile. The library begins transactions of its
// own, so that one around all reads is no way. Throws Failure when the database cannot be read.
class FrozenDatabase {
  public:
    // Waits that often for a database that is locked.
    explicit FrozenDatabase(int attempts = kPatience);
    ~FrozenDatabase();
    FrozenDatabase(FrozenDatabase const&) = delete;
    FrozenDatabase& operator=(FrozenDatabase const&) = delete;

  private:
    sqlite3* file_;
};

}  // namespace channel_lists
