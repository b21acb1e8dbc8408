// The BISS descrambling key stored with a service.
#include "db_access/busy_retry.h"
#include "db_access/callback_value.h"
#include "db_access/session.h"
#include "db_access/sql_literal.h"

std::string bisskey;

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::BissKey;
constexpr char kNoKey[] = "NULL";

}  // namespace
}  // namespace channellist

using namespace channellist;

std::string dbaccess::getBissKeyFromService(std::string uuid) {
    CallSite const site = CALL_SITE;
    bisskey = kNoKey;
    LOG_TEXT(Verbose, "called ");
    if (openChannelDatabase(site, kLogModule) != SQLITE_OK)
        return bisskey;
    std::string const sql = "SELECT bissKey From Service WHERE uuid=" + sqlLiteral(uuid) + ";";
    retryWhileBusy(kBissKeyAttempts, site, kLogModule, [&] {
        int const code = sqlite3_exec(db, sql.c_str(), getbissKey_callback, nullptr, nullptr);
        if (code != SQLITE_OK)
            LOG_FORMAT_AT(site, kLogModule, Error, "SQL error:%d", code);
        return code;
    });
    return bisskey;
}

int getbissKey_callback(void* /*context*/, int /*count*/, char** values, char** /*names*/) {
    if (values == nullptr) {
        LOG_TEXT(Error, "SQL error");
        return kStopQuery;
    }
    if (values[0] == nullptr) {
        LOG_TEXT(Error, "get bisskey result failed");
        return kContinueQuery;
    }
    try {
        bisskey = values[0];
    } catch (std::exception const& error) {
        LOG_FORMAT(Error, "BISS key not stored: %s", error.what());
        return kStopQuery;
    }
    return kContinueQuery;
}
