// The lists that a viewer can browse, in the order in which the set shows them.
#include "db_access/busy_retry.h"
#include "db_access/folder_query.h"
#include "db_access/session.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

}  // namespace
}  // namespace channellist

using namespace channellist;

ResultSet dbaccess::select_Folders() {
    CallSite const site = CALL_SITE;
    LOG_TEXT(Trace, "called ");
    ResultSet folders;
    if (openChannelDatabase(site, kLogModule) == SQLITE_OK) {
        retryWhileBusy(
            kQueryAttempts, site, kLogModule,
            [&] {
                int const code = sqlite3_exec(db, kFolderQuery, folder_callback, &folders, nullptr);
                if (code != SQLITE_OK)
                    LOG_FORMAT_AT(site, kLogModule, Error, "SQL error res:%d", code);
                if (code == SQLITE_BUSY)
                    folders.clear();  // the next attempt delivers every row again
                // SQLite handed out a null where it lacked memory for a text.
                if (code == SQLITE_NOMEM && !folders.empty())
                    folders.pop_back();
                return code;
            });
    }
    LOG_FORMAT(Trace, "folder.size:%d", static_cast<int>(folders.size()));
    return folders;
}
