// The read transaction of a request: its queries on this connection see one state of the file.
#ifndef CHANNELLIST_DB_ACCESS_READ_TRANSACTION_H
#define CHANNELLIST_DB_ACCESS_READ_TRANSACTION_H

#include "db_access/spare_rollback.h"

namespace channellist {

// When the frame is left without end(), or COMMIT fails, what was begun here is rolled back.
class ReadTransaction {
  public:
    ReadTransaction(sqlite3* connection, CallSite const& site) : connection_(connection) {
        bool const isOfHost = isInTransaction(connection);
        int const code = spare_.prepare(connection);
        if (code == SQLITE_OK)
            run("BEGIN TRANSACTION", site);
        else
            LOG_FORMAT_AT(site, LogModule::DatabaseAccess, Error, "SQL error:%d", code);
        open_ = !isOfHost && isInTransaction(connection);
    }
    ~ReadTransaction() {
        if (open_)
            spare_.finish(connection_);
    }
    ReadTransaction(ReadTransaction const&) = delete;
    ReadTransaction& operator=(ReadTransaction const&) = delete;

    // COMMIT is issued even when BEGIN failed.
    int end(CallSite const& site) {
        int const code = run("COMMIT TRANSACTION", site);
        open_ = open_ && isInTransaction(connection_);
        return code;
    }

  private:
    int run(char const* sql, CallSite const& site) {
        int const code = sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK)
            LOG_FORMAT_AT(site, LogModule::DatabaseAccess, Error, "SQL error:%d", code);
        return code;
    }

    sqlite3* connection_;
    SpareRollback spare_;
    bool open_ = false;
};

}  // namespace channellist

#endif
