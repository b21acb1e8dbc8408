// Whether another connection has written to a database meanwhile.
#ifndef CHANNELLIST_DB_ACCESS_DATA_VERSION_H
#define CHANNELLIST_DB_ACCESS_DATA_VERSION_H

#include <sqlite3.h>

#include <optional>

namespace channellist {

// A number that each commit advances, of this connection or another; SQLite looks for those of
// others where a read or write begins. Nothing when there is no number.
inline std::optional<unsigned int> dataVersion(sqlite3* connection) {
    unsigned int version = 0;
    if (sqlite3_file_control(connection, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK)
        return std::nullopt;
    return version;
}

// The commits of others from the last read before start() to the last read or write before came().
class CommitsOfOthers {
  public:
    void start(sqlite3* connection) {
        connection_ = connection;
        version_ = dataVersion(connection);
    }

    // This connection has committed, once.
    void countOwn() {
        if (version_)
            ++*version_;
    }

    // Nothing when that cannot be told.
    std::optional<bool> came() const {
        if (!version_)
            return std::nullopt;
        return dataVersion(connection_) != version_;
    }

  private:
    sqlite3* connection_ = nullptr;
    std::optional<unsigned int> version_;
};

}  // namespace channellist

#endif
