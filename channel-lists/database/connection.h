// Connections that nothing in a foreign database can lead astray.
#pragma once

#include <sqlite3.h>

#include <string>

#include "database/query.h"

namespace channel_lists {

// Opens the file with SQLite's flags. Throws Failure; `connection` is to be closed even then.
void openConnection(std::string const& path, int flags, sqlite3*& connection);

// The content of the database, as it is at one moment, in memory. A file that another process has
// locked is tried that often. Throws Failure; the caller closes the copy.
sqlite3* copyInMemory(sqlite3* source, int attempts = kPatience);

}  // namespace channel_lists
