// The change counter of a list, by which clients tell that it has changed.
#include "db_access/busy_retry.h"
#include "db_access/session.h"
#include "support/number_text.h"

namespace channellist {
namespace {
constexpr LogModule kLogModule = LogModule::DatabaseAccess;
}
}  // namespace channellist

using namespace channellist;

int dbaccess::UpdateListTag(unsigned int listPid) {
    CallSite const site = CALL_SITE;
    LOG_TEXT(Verbose, "called ");
    std::string const sql =
        "UPDATE FavoriteList SET UpdateTag = case UpdateTag WHEN 65535 then 0 else UpdateTag+1 end"
        " Where Pid= " +
        numberText(listPid) + ";";
    return retryWhileBusy(kUpdateTagAttempts, site, kLogModule, [&] {
        int const code = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
        if (code != SQLITE_OK)
            LOG_FORMAT_AT(site, kLogModule, Error, "SQL error:%d", code);
        return code;
    });
}
