#include "database/connection.h"

#include <cstring>

#include "database/query.h"
#include "database/time_limit.h"
#include "failure.h"

namespace channel_lists {
namespace {

constexpr int kBusyTimeoutMilliseconds = 1000;  // that of the library's service query

// A database may come from anywhere: its schema runs no function that reaches out of it, and
// nothing that it holds makes a text of any length or a statement without end.
void guard(sqlite3* connection) {
    constexpr int kMostBytes = 64 << 20;  // of a text; a service has a few hundred
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, kMostBytes);
    sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 1);
    sqlite3_limit(connection, SQLITE_LIMIT_TRIGGER_DEPTH, 100);
    TimeLimit::watch(connection);
}

}  // namespace

void openConnection(std::string const& path, int flags, sqlite3*& connection) {
    if (sqlite3_open_v2(path.c_str(), &connection, flags, nullptr) != SQLITE_OK) {
        int const reason = sqlite3_system_errno(connection);
        throw Failure("cannot open " + path + ": " +
                      (reason != 0 ? std::strerror(reason) : sqlite3_errmsg(connection)));
    }
    sqlite3_busy_timeout(connection, kBusyTimeoutMilliseconds);
    guard(connection);
}

// A connection takes texts for what it was made with, whatever pages are copied into it.
static void copyEncoding(sqlite3* source, sqlite3* copy) {
    std::string encoding;
    waitWhileLocked([&] {
        Query query(source, "PRAGMA encoding");
        encoding = query.next() ? query.text(0) : "UTF-8";
    });
    sqlite3_exec(copy, ("PRAGMA encoding = '" + encoding + "'").c_str(), nullptr, nullptr, nullptr);
}

sqlite3* copyInMemory(sqlite3* source, int attempts) {
    sqlite3* copy = nullptr;
    try {
        openConnection(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, copy);
        copyEncoding(source, copy);
        waitWhileLocked(
            [&] {
                sqlite3_backup* const backup = sqlite3_backup_init(copy, "main", source, "main");
                if (backup != nullptr)
                    sqlite3_backup_step(backup, -1);
                int const code =
                    backup == nullptr ? sqlite3_errcode(copy) : sqlite3_backup_finish(backup);
                std::string const sentence =
                    std::string("the database cannot be read: ") + sqlite3_errstr(code);
                if (code == SQLITE_BUSY)
                    throw Locked(sentence);
                if (code != SQLITE_OK)
                    throw Failure(sentence);
            },
            attempts);
    } catch (...) {
        sqlite3_close(copy);
        throw;
    }
    return copy;
}

}  // namespace channel_lists
