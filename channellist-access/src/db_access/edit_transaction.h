// The write transaction of one edit.
#ifndef CHANNELLIST_DB_ACCESS_EDIT_TRANSACTION_H
#define CHANNELLIST_DB_ACCESS_EDIT_TRANSACTION_H

#include <channellist-access/db_access.h>

#include "db_access/spare_rollback.h"
#include "support/log.h"

namespace channellist {

// Rolls back when it is left begun and not committed, by an early return or an exception. Its
// statements run through sqlexec, which logs a failure; the spare rollback logs its own.
class EditTransaction {
  public:
    explicit EditTransaction(sqlite3* connection) : connection_(connection) {}
    ~EditTransaction() { rollback(); }
    EditTransaction(EditTransaction const&) = delete;
    EditTransaction& operator=(EditTransaction const&) = delete;

    // The file is locked by the first write. Returns SQLite's code; unless it is 0 nothing was
    // begun.
    int begin();

    // Locks the file against other writers at once, and waits for them.
    int beginLocked(CallSite const& site);

    // Tries again while readers of other processes hold the file. Returns 0 when all is written,
    // also where an interrupt came too late to stop that; else nothing is, once this object is
    // gone. The messages carry the caller's site.
    int commit(CallSite const& site);

  private:
    int beginWith(char const* sql);
    int execute(char const* sql);
    void rollback();

    sqlite3* connection_;
    SpareRollback spare_;
    bool open_ = false;
};

}  // namespace channellist

#endif
