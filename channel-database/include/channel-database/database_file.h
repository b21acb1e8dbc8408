/// From the file of a channel list to the file of a channel database.
#pragma once

#include <channel-database/channels_conf.h>
#include <channel-database/import.h>

#include <string>

namespace channel_database {

/// Makes a channel database in a temporary place of SQLite's, and puts it into the file `path` (see
/// database_content.h): a new file appears whole, and with `replace` the content of an existing
/// database is replaced as a whole. A failure (a list without channels, too) throws
/// std::runtime_error and leaves everything as it was. `beforeReplacing` is called with the
/// new content when all is ready to replace another one, as replaceContent does. Gives the number
/// of services.
std::size_t makeDatabaseFile(ChannelsConf const& list, std::string const& path, bool replace,
                             ImportProgress const& progress = {},
                             std::function<void(sqlite3*)> const& beforeReplacing = {});

}  // namespace channel_database
