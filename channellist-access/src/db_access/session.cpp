#include "db_access/session.h"

#include "db_access/busy_retry.h"

sqlite3* db = nullptr;
sqlite3* db_zentova = nullptr;
pthread_mutex_t svresult_mutex = PTHREAD_MUTEX_INITIALIZER;
unsigned int m_selectedServiceListId = 0;

namespace channellist {

namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// Sorts in memory on a connection that was opened here: a long list that needs a file to be sorted
// in would be empty where the folder for such files is full or cannot be written.
void sortInMemory(CallSite const& site, LogModule module) {
    int const code = sqlite3_exec(db, "PRAGMA temp_store = MEMORY;", nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        LOG_FORMAT_AT(site, module, Error, "sorting needs temporary files, res:%d", code);
}

}  // namespace

std::mutex& openMutex() {
    static std::mutex mutex;
    return mutex;
}

int openChannelDatabase(CallSite const& site, LogModule module) {
    std::lock_guard<std::mutex> const opening(openMutex());
    if (db != nullptr)
        return SQLITE_OK;
    LOG_TEXT_AT(site, module, Trace, "will open db ");
    int const code = sqlite3_open(kChannelDatabasePath, &db);
    if (code != SQLITE_OK) {
        LOG_FORMAT_AT(site, module, Error, "open or create db failed,res:%d", code);
        sqlite3_close(db);
        db = nullptr;
    } else {
        sortInMemory(site, module);
    }
    return code;
}

int openChannelDatabaseKeepingHandle(CallSite const& site) {
    std::lock_guard<std::mutex> const opening(openMutex());
    if (db != nullptr)
        return SQLITE_OK;
    LOG_TEXT_AT(site, kLogModule, Verbose, "will open db ");
    int const code = sqlite3_open(kChannelDatabasePath, &db);
    if (code != SQLITE_OK)
        LOG_FORMAT_AT(site, kLogModule, Error, "open or creat servicelist.db failed,res:%d ", code);
    else
        sortInMemory(site, kLogModule);
    return code;
}

}  // namespace channellist

int dbaccess::busy_callback(void* /*arg*/, int count) {
    using namespace channellist;
    sleepBetweenAttempts();
    LOG_FORMAT(Error, "data base is locked %d ", count);
    return 1;
}
