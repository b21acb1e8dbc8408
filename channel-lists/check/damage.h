// Files that cannot be read, or not wholly.
#pragma once

#include <sqlite3.h>

#include <string>

#include "check/finding.h"

namespace channel_lists {

// What a person does about damage.
std::string stepsFromDamage();
// How many rows of each table can be read.
std::string stillReadable(sqlite3* connection);
// What there is to say of a file that SQLite refuses to open as a database, for the reason `why`.
Finding damagedFile(std::string const& path, std::string const& why);

}  // namespace channel_lists
