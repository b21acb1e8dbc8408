// Whether another connection has written to a database meanwhile.
#ifndef CHANNELLIST_DB_ACCESS_DATA_VERSION_H
#define CHANNELLIST_DB_ACCESS_DATA_VERSION_H

#include <sqlite3.h>

#include <optional>

namespace channellist {

// A number that is another one when a commit came between the last reads of two calls; SQLite looks
// for commits of other connections where a read or write begins. Nothing when there is no number.
inline std::optional<unsigned int> dataVersion(sqlite3* connection) {
    unsigned int version = 0;
    if (sqlite3_file_control(connection, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK)
        return std::nullopt;
    return version;
}

}  // namespace channellist

#endif
