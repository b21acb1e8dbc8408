#include "edit/commit_guard.h"

#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>

namespace channel_lists {

std::optional<unsigned int> fileVersion(sqlite3* connection) {
    unsigned int version = 0;
    if (sqlite3_file_control(connection, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK)
        return std::nullopt;
    return version;
}

CommitGuard::CommitGuard() : connection_(db), version_(fileVersion(db)) {
    sqlite3_commit_hook(connection_, mayCommit, this);
}

CommitGuard::~CommitGuard() { sqlite3_commit_hook(connection_, nullptr, nullptr); }

int CommitGuard::mayCommit(void* guard) {
    auto& self = *static_cast<CommitGuard*>(guard);
    auto const version = fileVersion(self.connection_);
    self.hasRefused_ = self.hasRefused_ || channel_database::isMoved(self.connection_) ||
                       !version || version != self.version_;
    if (self.version_)
        ++*self.version_;  // by the commit that follows
    return self.hasRefused_ ? 1 : 0;
}

}  // namespace channel_lists
