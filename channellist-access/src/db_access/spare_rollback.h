// A rollback that works without memory.
#ifndef CHANNELLIST_DB_ACCESS_SPARE_ROLLBACK_H
#define CHANNELLIST_DB_ACCESS_SPARE_ROLLBACK_H

#include <sqlite3.h>

#include "support/log.h"

namespace channellist {

// Where memory has run out, "ROLLBACK TRANSACTION" cannot be prepared any more: the transaction
// would stay open, keep its locks, and be committed by whoever ends the next one. So the statement
// is prepared before the transaction begins.
class SpareRollback {
  public:
    SpareRollback() = default;
    ~SpareRollback() { sqlite3_finalize(statement_); }
    SpareRollback(SpareRollback const&) = delete;
    SpareRollback& operator=(SpareRollback const&) = delete;

    // Returns SQLite's code; nothing may be begun unless it is 0.
    int prepare(sqlite3* connection) {
        if (statement_ != nullptr)
            return SQLITE_OK;
        return sqlite3_prepare_v2(connection, "ROLLBACK TRANSACTION", -1, &statement_, nullptr);
    }

    // Ends the transaction if it is still open.
    void finish(sqlite3* connection) {
        if (sqlite3_get_autocommit(connection) == 0 && sqlite3_step(statement_) != SQLITE_DONE)
            LOG_FORMAT_AT(CALL_SITE, LogModule::DatabaseAccess, Error, "not rolled back: %s",
                          sqlite3_errmsg(connection));
    }

  private:
    sqlite3_stmt* statement_ = nullptr;
};

}  // namespace channellist

#endif
