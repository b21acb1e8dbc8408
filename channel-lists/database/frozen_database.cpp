#include "database/frozen_database.h"

#include <channellist-access/db_access.h>

#include <utility>

#include "database/connection.h"

namespace channel_lists {

FrozenDatabase::FrozenDatabase(int attempts) : file_(db) { db = copyInMemory(file_, attempts); }
FrozenDatabase::~FrozenDatabase() { sqlite3_close(std::exchange(db, file_)); }

}  // namespace channel_lists
