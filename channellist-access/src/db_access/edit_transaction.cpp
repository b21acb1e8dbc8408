#include "db_access/edit_transaction.h"

#include "db_access/busy_retry.h"

namespace channellist {

int EditTransaction::begin() {
    int const code = execute("BEGIN TRANSACTION");
    open_ = code == SQLITE_OK;
    return code;
}

int EditTransaction::commit(CallSite const& site) {
    int const code = retryWhileBusy(kCommitAttempts, site, LogModule::DatabaseAccess,
                                    [this] { return execute("COMMIT TRANSACTION"); });
    if (code == SQLITE_OK)
        open_ = false;
    return code;
}

int EditTransaction::execute(const char* sql) {
    char* error = nullptr;
    return sqlexec(connection_, sql, nullptr, nullptr, &error);
}

void EditTransaction::rollback() {
    if (open_)
        execute("ROLLBACK TRANSACTION");
    open_ = false;
}

}  // namespace channellist
