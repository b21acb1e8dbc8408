// Whether a transaction is open, and a rollback that ends it in any case.
#ifndef CHANNELLIST_DB_ACCESS_SPARE_ROLLBACK_H
#define CHANNELLIST_DB_ACCESS_SPARE_ROLLBACK_H

#include <sqlite3.h>

#include "support/log.h"

namespace channellist {

// What is true, whatever the statement returned that should have begun or ended a transaction: an
// interrupt may hit one that has done its work.
inline bool isInTransaction(sqlite3* connection) {
    return connection != nullptr && sqlite3_get_autocommit(connection) == 0;
}

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
        for (int attempt = 0; attempt < kAttempts && isInTransaction(connection); ++attempt) {
            sqlite3_reset(statement_);
            sqlite3_step(statement_);
            if (isInTransaction(connection))
                finishUnderInterrupts(connection);
        }
        if (isInTransaction(connection))
            LOG_FORMAT_AT(CALL_SITE, LogModule::DatabaseAccess, Error, "not rolled back: %s",
                          sqlite3_errmsg(connection));
    }

  private:
    static constexpr int kAttempts = 10;  // beside interrupts that come and go

    // A host's handler that interrupts everything interrupts the rollback, too. But SQLite rolls
    // the transaction back when an interrupt hits a statement that may write: this one writes
    // nothing if it gets through.
    static void finishUnderInterrupts(sqlite3* connection) {
        sqlite3_exec(connection, "DELETE FROM FavoriteItem WHERE 0;", nullptr, nullptr, nullptr);
    }

    sqlite3_stmt* statement_ = nullptr;
};

}  // namespace channellist

#endif
