// The exported SQL helpers: every failure logged in one form, every statement released on failure.
#include <channellist-access/db_access.h>

#include "db_access/busy_retry.h"
#include "support/log.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

void releaseStatement(sqlite3_stmt** stmt) {
    sqlite3_finalize(*stmt);
    *stmt = nullptr;
}

// Steps until the database is free; any result but `success` releases the statement. The messages
// are those of the helper at `site`.
int stepExpecting(int success, sqlite3_stmt** stmt, char const* hint, CallSite const& site) {
    int const code =
        retryWhileBusy(kStepAttempts, site, kLogModule, [stmt] { return sqlite3_step(*stmt); });
    if (code == success)
        return code;
    if (code == SQLITE_BUSY)
        LOG_FORMAT_AT(site, kLogModule, Error, " database is locked, time out, hint:'%s'.", hint);
    else
        LOG_FORMAT_AT(site, kLogModule, Error, "sqlite3_step failed:%d, hint:'%s'.", code, hint);
    releaseStatement(stmt);
    return code;
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int sqlexec(sqlite3* connection, char const* sql, int (*callback)(void*, int, char**, char**),
            void* arg, char** errmsg) {
    int const code = sqlite3_exec(connection, sql, callback, arg, errmsg);
    if (code == SQLITE_OK)
        return code;
    LOG_FORMAT(Error, "sqlite3_exec error:%d, sql:'%s'.", code, sql);
    if (errmsg != nullptr && *errmsg != nullptr) {
        LOG_FORMAT(Error, "%s", *errmsg);
        sqlite3_free(*errmsg);
        *errmsg = nullptr;
    }
    return code;
}

int sqlprepare(sqlite3* connection, char const* sql, int nByte, sqlite3_stmt** stmt,
               char const** tail) {
    int const code = sqlite3_prepare_v2(connection, sql, nByte, stmt, tail);
    if (code == SQLITE_OK)
        return code;
    LOG_FORMAT(Error, "sqlite3_prepare_v2 failed:%d, sql:'%s'.", code, sql);
    if (stmt != nullptr && *stmt != nullptr)
        releaseStatement(stmt);
    return code;
}

int sqlstep(sqlite3_stmt** stmt, char const* hint) {
    return stepExpecting(SQLITE_DONE, stmt, hint, CALL_SITE);
}

int sqlstepquery(sqlite3_stmt** stmt, char const* hint) {
    return stepExpecting(SQLITE_ROW, stmt, hint, CALL_SITE);
}
