#include "db_access/edit_transaction.h"

#include "db_access/busy_retry.h"
#include "db_access/data_version.h"

namespace channellist {
namespace {

// What the connection keeps of the file in memory.
int cachedBytes(sqlite3* connection) {
    int bytes = 0, highest = 0;
    sqlite3_db_status(connection, SQLITE_DBSTATUS_CACHE_USED, &bytes, &highest, 0);
    return bytes;
}

}  // namespace

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
    int const cachedBefore = cachedBytes(connection_);
    int const code = retryWhileBusy(kCommitAttempts, site, LogModule::DatabaseAccess,
                                    [this] { return execute("COMMIT TRANSACTION"); });
    open_ = isInTransaction(connection_);
    // The interrupt of a commit that got through came when all was written. It may also hide that
    // storage failed: then the version stays, or moves twice, or once with the pages thrown away.
    bool const isWritten = !open_ && before && dataVersion(connection_) == *before + 1 &&
                           cachedBytes(connection_) > cachedBefore / 2;
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
