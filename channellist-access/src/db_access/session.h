// The process-wide state through which every entry point reaches the channel database.
#ifndef CHANNELLIST_DB_ACCESS_SESSION_H
#define CHANNELLIST_DB_ACCESS_SESSION_H

#include <channellist-access/db_access.h>

#include <mutex>

#include "support/log.h"

namespace channellist {

inline constexpr char kChannelDatabasePath[] = "/var/tvservice/servicelist.db";

// Results of the entry points beside SQLite's own codes.
inline constexpr int kMalformed = -1;  // a request or row that does not convert
inline constexpr int kFailed = -2;     // nothing found, nothing opened, or rolled back

// Holds svresult_mutex for a scope.
class ResultLock {
  public:
    ResultLock() { pthread_mutex_lock(&svresult_mutex); }
    ~ResultLock() { pthread_mutex_unlock(&svresult_mutex); }
    ResultLock(ResultLock const&) = delete;
    ResultLock& operator=(ResultLock const&) = delete;
};

// Guards the opening of both connections, so that the first calls of several threads open a file
// once. Always taken inside svresult_mutex where both are held.
std::mutex& openMutex();

// Opens `db` if it is null. After a failed open the handle is closed and `db` null again. The
// messages carry the entry point's call site and module. Returns SQLite's code.
int openChannelDatabase(CallSite const& site, LogModule module);

// As openChannelDatabase, for the service query: after a failed open the handle stays in `db`.
int openChannelDatabaseKeepingHandle(CallSite const& site);

}  // namespace channellist

#endif
