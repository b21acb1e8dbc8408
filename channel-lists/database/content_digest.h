// Whether a database holds what it held.
#pragma once

#include <sqlite3.h>

#include <string>

namespace channel_lists {

// A short text for the tables of the connection's main database, as they are defined, and their
// rows: another one, but for one case in some 10^19, where anything differs but the lists' update
// tags and highest numbers and the keys of their entries. Not for proof against somebody who means
// to deceive. Throws Failure.
std::string contentDigest(sqlite3* connection);

// Of what the file holds at one moment. Throws Failure, Locked where others hold it for long.
std::string fileDigest(std::string const& path);

}  // namespace channel_lists
