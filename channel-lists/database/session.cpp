#include "database/session.h"

#include <channellist-access/db_access.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "database/connection.h"
#include "database/query.h"
#include "database/time_limit.h"
#include "database/waiting.h"
#include "failure.h"
#include "listener.h"

namespace channel_lists {
namespace {

constexpr char kOttFile[] = "zentova_DB_V1.3.db";

// SQLite opens lazily and takes an empty file for a database; these sentences come before.
void checkFile(std::string const& path) {
    struct stat file;
    if (stat(path.c_str(), &file) != 0) {
        throw Failure(errno == ENOENT ? "there is no database " + path
                                      : "cannot open " + path + ": " + std::strerror(errno));
    }
    if (S_ISDIR(file.st_mode))
        throw Failure(path + " is a directory, not a database");
    if (!S_ISREG(file.st_mode))
        throw Failure(path + " is no regular file, and so no database");
    if (file.st_size == 0)
        throw Failure(path + " is empty: it holds no channel database");
}

void checkContent(std::string const& path, int code) {
    if (code == SQLITE_NOTADB)
        throw Failure(path + " is no SQLite database");
    if (code == SQLITE_CORRUPT)
        throw Damaged("cannot read " + path + ": " + sqlite3_errmsg(db));
    if (code == SQLITE_BUSY)
        throw Locked(path + " is locked by another process");
    if (code != SQLITE_OK)
        throw Failure("cannot read " + path + ": " + sqlite3_errmsg(db));
    if (queryNumber(db,
                    "SELECT count(*) FROM sqlite_master WHERE type IN ('table', 'view')"
                    " AND lower(name) IN ('service', 'favoritelist', 'favoriteitem')") == 0) {
        throw Failure(path +
                      " is a SQLite database, but no channel database: it has none of the"
                      " tables Service, FavoriteList and FavoriteItem");
    }
}

void close(sqlite3*& connection) {
    sqlite3_close(connection);
    connection = nullptr;
}

std::string whyUnsettled(std::string const& path) {
    struct stat file;
    bool const isInterrupted =
        stat((path + "-journal").c_str(), &file) == 0 || stat((path + "-wal").c_str(), &file) == 0;
    return isInterrupted
               ? "an interrupted write lies beside " + path + ", and this user may not settle it"
               : path +
                     " is in WAL mode, and this user may not make the files that SQLite needs"
                     " beside it";
}

// SQLite would fail in the middle of the edit.
void checkFolder(std::string const& path) {
    auto const slash = path.rfind('/');
    std::string const folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    if (access(folder.c_str(), W_OK | X_OK) != 0) {
        throw Failure("cannot write " + path + ": SQLite needs a journal beside it, and " + folder +
                      " cannot be written: " + std::strerror(errno));
    }
}

// What a process that died has left unfinished can be settled only by a connection that may write.
// Nothing else is ever written for a reading command.
void settle(std::string const& path) {
    constexpr char kRead[] = "SELECT count(*) FROM sqlite_master";
    sqlite3* connection = nullptr;
    auto const read = [&](int flags) {
        close(connection);
        openConnection(path, flags, connection);
        return sqlite3_exec(connection, kRead, nullptr, nullptr, nullptr);
    };
    int code = read(SQLITE_OPEN_READONLY);
    bool const isUnfinished = code == SQLITE_READONLY || code == SQLITE_CANTOPEN;
    if (isUnfinished)
        code = read(SQLITE_OPEN_READWRITE);
    close(connection);
    if (!isUnfinished)
        return;
    if (code == SQLITE_READONLY || code == SQLITE_CANTOPEN)
        throw Failure(whyUnsettled(path) +
                      ": run the command as a user who may write it and its"
                      " folder");
    if (code == SQLITE_OK)
        listener().note("settled an interrupted write that lay beside " + path);
}

}  // namespace

OttSession::OttSession(Ott ott) {
    char const* const home = std::getenv("HOME");
    path_ = home == nullptr ? std::string() : std::string(home) + "/" + kOttFile;
    struct stat file;
    exists_ = !path_.empty() && stat(path_.c_str(), &file) == 0 && file.st_size != 0;
    try {
        if (exists_) {
            openConnection(path_, SQLITE_OPEN_READONLY, db_zentova);
            return;
        }
    } catch (Failure const& failure) {
        close(db_zentova);
        if (ott == Ott::Needed)
            throw;
        problem_ = failure.what();
    }
    try {
        openConnection(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, db_zentova);
    } catch (...) {
        close(db_zentova);
        throw;
    }
    sqlite3_exec(db_zentova, "CREATE TABLE SQL_OTTFavChannels (favName TEXT, favIndex INTEGER)",
                 nullptr, nullptr, nullptr);
}

OttSession::~OttSession() { close(db_zentova); }

Session::Session(std::string const& path, Access access, Ott ott) : ott_(ott) {
    checkFile(path);
    tellWaitsFor(path);
    try {
        if (access == Access::Read)
            settle(path);
        else
            checkFolder(path);
        openConnection(path, access == Access::Read ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE,
                       db);
        checkContent(path, sqlite3_exec(db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr,
                                        nullptr));
        if (access == Access::Write && sqlite3_db_readonly(db, "main") == 1)
            throw Failure(path + " cannot be written");
        if (access == Access::Write)  // a removed journal does not come back with the power
            sqlite3_exec(db, "PRAGMA synchronous = EXTRA", nullptr, nullptr, nullptr);
        TimeLimit::learnViews(db);
    } catch (...) {
        close(db);
        throw;
    }
}

void Session::continueOnCopy() {
    sqlite3* const copy = copyInMemory(db);
    sqlite3_close(std::exchange(db, copy));
}

Session::~Session() { close(db); }

}  // namespace channel_lists
