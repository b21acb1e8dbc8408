// Commits of the library's connection, refused once somebody else has written.
#pragma once

#include <sqlite3.h>

#include <optional>

namespace channel_lists {

// From the last read on `db` before it was made, until it ends: a commit passes only while no other
// connection has committed since that read, and the file is still the one under its name. SQLite
// asks the hook behind the write lock, where nobody else can write any more; what it refuses is
// rolled back, and the library answers as for a failed edit. Once refused, all later commits are.
class CommitGuard {
  public:
    CommitGuard();
    ~CommitGuard();
    CommitGuard(CommitGuard const&) = delete;
    CommitGuard& operator=(CommitGuard const&) = delete;

    bool hasRefused() const { return hasRefused_; }
    // Of the file, as our commits so far have left it.
    std::optional<unsigned int> version() const { return version_; }

  private:
    static int mayCommit(void* guard);

    sqlite3* connection_;
    std::optional<unsigned int> version_;  // of the file, own commits included
    bool hasRefused_ = false;
};

// A number that differs once somebody, this connection included, has committed; SQLite looks for
// the commits of others where a read or write begins.
std::optional<unsigned int> fileVersion(sqlite3* connection);

}  // namespace channel_lists
