// The lists that a viewer can browse, in the order in which the set shows them.
#include "db_access/busy_retry.h"
#include "db_access/session.h"

#include <string_view>

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// clang-format off

// 32 is added to the attributes of a list with LCN rows, except in five networks. The order: kind of
// list; bouquet id within network 61; TV before radio without a network; name.
constexpr char kFolderQuery[] =
    "SELECT Pid,Uuid,Name,Creator,"
    "Attributes+(CASE WHEN (SELECT COUNT(*) FROM LCN WHERE FavoriteId=Pid)>0"
    " AND NetworkId<>14 AND NetworkId<>51 AND NetworkId<>68 AND NetworkId<>79 AND NetworkId<>80"
    " THEN 32 ELSE 0 END),NetworkId,UpdateTag"
    " FROM FavoriteList"
    " WHERE (creator<>'tamun.sl2.servicelist$all')"
    " and (creator NOT LIKE 'servicelist://tamun.dvbip%')"
    " ORDER BY CASE"
    " WHEN Creator LIKE 'servicelist://tamun.home%' THEN 0"
    " WHEN Creator LIKE 'servicelist://tamun.analog%' THEN 1"
    " WHEN Creator LIKE 'servicelist://tamun.dvbc%' THEN 3"
    " WHEN Creator LIKE 'servicelist://tamun.dvbt%' THEN 2"
    " WHEN Creator LIKE '%0x10000%' THEN 5"
    " WHEN Creator='tamun.sl2.servicelist$all' THEN 200"
    " WHEN Creator='tamun.sl2.servicelist$av' THEN 300"
    " WHEN Creator LIKE 'User.%' THEN 100+Pid"
    " ELSE 4 END,"
    " CASE WHEN NetworkId=61 THEN BATId ELSE 0 END,"
    " CASE WHEN NetworkId=-1 AND Creator LIKE 'servicelist://tamun.%.tv' THEN 0"
    " WHEN NetworkId=-1 AND Creator LIKE 'servicelist://tamun.%.radio' THEN 1"
    " ELSE 2 END,"
    " Name COLLATE NOCASE;";

// clang-format on

static_assert(std::string_view(kFolderQuery).size() == 986);

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
                if (code == SQLITE_NOMEM && !folders.empty())
                    folders
                        .pop_back();  // SQLite handed out a null where it lacked memory for a text
                return code;
            });
    }
    LOG_FORMAT(Trace, "folder.size:%d", static_cast<int>(folders.size()));
    return folders;
}
