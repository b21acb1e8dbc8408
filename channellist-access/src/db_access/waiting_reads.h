// What edits and lookups read. A moment's lock of another process costs no edit and changes no
// answer: all of it waits as the read queries do.
#ifndef CHANNELLIST_DB_ACCESS_WAITING_READS_H
#define CHANNELLIST_DB_ACCESS_WAITING_READS_H

#include <vector>

#include "db_access/busy_retry.h"
#include "db_access/statement.h"

namespace channellist {

using RowCallback = int (*)(void* context, int count, char** values, char** names);

// Runs a query on `db`. `forget` drops the rows of the attempt before, that none comes twice.
// Returns SQLite's code; SQLITE_BUSY, told with `hint`, when the file stayed locked.
template <typename Forget>
int waitAndRead(CallSite const& site, char const* sql, RowCallback callback, void* context,
                Forget forget, char const* hint) {
    int const code = retryWhileBusy(kQueryAttempts, site, LogModule::DatabaseAccess, [&] {
        forget();
        char* error = nullptr;
        return sqlexec(db, sql, callback, context, &error);
    });
    if (code == SQLITE_BUSY)
        LOG_FORMAT_AT(site, LogModule::DatabaseAccess, Error,
                      " database is locked, time out, hint:'%s'.", hint);
    return code;
}

// Prepares a statement for `db`: on a fresh connection that reads the schema. Returns as
// waitAndRead.
inline int waitAndPrepare(CallSite const& site, char const* sql, Statement& statement) {
    int const code = retryWhileBusy(kQueryAttempts, site, LogModule::DatabaseAccess,
                                    [&] { return statement.prepare(db, sql); });
    if (code == SQLITE_BUSY)
        LOG_FORMAT_AT(site, LogModule::DatabaseAccess, Error,
                      " database is locked, time out, hint:'%s'.", sql);
    return code;
}

}  // namespace channellist

#endif
