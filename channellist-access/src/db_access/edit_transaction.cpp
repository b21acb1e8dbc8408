#include "db_access/edit_transaction.h"

#include "db_access/busy_retry.h"
#include "db_access/data_version.h"

namespace channellist {

int EditTransaction::begin() { return beginWith("BEGIN TRANSACTION"); }

int EditTransaction::beginLocked(CallSite const& site) {
    return retryWhileBusy(
        kStepAttempts, site, LogModule::DatabaseAccess,
        [this] { return beginWith("BEGIN IMMEDIATE TRANSACTION"); });
}

int EditTransaction::beginWith(char const* sql) {
    int code = spare_.prepare(connection_);
    if (code != SQLITE_OK) {
        LOG_FORMAT_AT(CALL_SITE, LogModule::DatabaseAccess, Error, "no rollback prepared:%d", code);
        return code;
    }
    bool const isOfHost = isInTransaction(connection_);
    code = execute(sql);
    open_ = !isOfHost && isInTransaction(connection_);
    if (code != SQLITE_OK)
        rollback();
    return code;
}

int EditTransaction::commit(CallSite const& site) {
    auto const before = dataVersion(connection_);
    int const code = retryWhileBusy(kCommitAttempts, site, LogModule::DatabaseAccess,
                                    [this] { return execute("COMMIT TRANSACTION"); });
    open_ = isInTransaction(connection_);
    // The interrupt of a commit that got through came when all was written. One that storage failed
    // is rolled back, and the interrupt may hide that.
    bool const isWritten = !open_ && dataVersion(connection_) != before;
    return code == SQLITE_INTERRUPT && isWritten ? SQLITE_OK : code;
}

int EditTransaction::execute(char const* sql) {
    char* error = nullptr;
    return sqlexec(connection_, sql, nullptr, nullptr, &error);
}

void EditTransaction::rollback() {
    if (open_) {
        execute("ROLLBACK TRANSACTION");
        spare_.finish(connection_);
    }
    open_ = false;
}

}  // namespace channellist
