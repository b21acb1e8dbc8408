// A prepared statement that is finalized on every path.
#ifndef CHANNELLIST_DB_ACCESS_STATEMENT_H
#define CHANNELLIST_DB_ACCESS_STATEMENT_H

#include <channellist-access/db_access.h>

#include "support/log.h"

namespace channellist {

class Statement {
  public:
    Statement() = default;
    ~Statement() { sqlite3_finalize(handle_); }
    Statement(Statement const&) = delete;
    Statement& operator=(Statement const&) = delete;

    int prepare(sqlite3* connection, char const* sql) {
        return sqlprepare(connection, sql, -1, &handle_, nullptr);
    }

    // Makes the statement ready to run again with these values for its parameters 1, 2, ... A
    // number above 2147483647 is bound by its bits, as a negative one.
    template <typename... Values>
    void rebind(Values... values) {
        sqlite3_reset(handle_);
        int position = 0;
        (sqlite3_bind_int(handle_, ++position, static_cast<int>(values)), ...);
    }

    // As sqlstep and sqlstepquery: a failing step has finalized the statement.
    int step(char const* hint) {
        int const code = sqlstep(&handle_, hint);
        if (code == SQLITE_ROW)
            LOG_TEXT_AT(CALL_SITE, LogModule::DatabaseAccess, Error,
                        "a write gave a row: the host has count_changes on");
        return code;
    }
    int stepQuery(char const* hint) { return sqlstepquery(&handle_, hint); }

    // Text of a column of the current row; null when the column is null.
    char const* columnText(int column) {
        return reinterpret_cast<char const*>(sqlite3_column_text(handle_, column));
    }

    void finalize() {
        sqlite3_finalize(handle_);
        handle_ = nullptr;
    }

  private:
    sqlite3_stmt* handle_ = nullptr;
};

}  // namespace channellist

#endif
