// The positions of OTT channels, which another component keeps in a WebSQL database of its own.
#include <cstdlib>

#include "db_access/callback_value.h"
#include "db_access/ott_snapshot.h"
#include "db_access/session.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;
// The owner's commits are waited out: without the numbers of OTT channels, services would be put on
// them.
constexpr int kBusyTimeoutMilliseconds = 1000;
constexpr int kSearchFailed = -1;

// Opens `db_zentova` if it is null; false after a failure, which is logged for the search.
bool openOttDatabase(CallSite const& site) {
    std::lock_guard<std::mutex> const opening(openMutex());
    if (db_zentova != nullptr)
        return true;
    char const* const home = std::getenv("HOME");
    if (home == nullptr) {
        LOG_TEXT_AT(site, kLogModule, Error, "Cannot get Websql db path. ");
        return false;
    }
    std::string const directory = std::string(home) + "/";
    LOG_FORMAT_AT(site, kLogModule, Verbose, "Websql db path:%s", directory.c_str());
    std::string const path = directory + "zentova_DB_V1.3" + ".db";
    LOG_FORMAT_AT(site, kLogModule, Verbose, "dbPath:%s", path.c_str());
    if (sqlite3_open(path.c_str(), &db_zentova) == SQLITE_OK) {
        sqlite3_busy_timeout(db_zentova, kBusyTimeoutMilliseconds);
        return true;
    }
    LOG_FORMAT_AT(site, kLogModule, Error, "open db failed. %s ", sqlite3_errmsg(db_zentova));
    sqlite3_close(db_zentova);
    db_zentova = nullptr;
    return false;
}

// A null position belongs to no channel and is skipped; a negative one wraps.
int positionCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    if (values == nullptr || values[0] == nullptr)
        return kContinueQuery;
    auto const position = static_cast<unsigned int>(leadingNumber(values[0]));
    return appendNumber(position, *static_cast<std::vector<unsigned int>*>(context));
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int dbaccess::searchOTTdb(char const* statement, std::vector<unsigned int>& values) {
    if (!openOttDatabase(CALL_SITE))
        return kSearchFailed;
    if (OttSnapshot::hold(db_zentova) == SQLITE_OK &&
        sqlite3_exec(db_zentova, statement, positionCallback, &values, nullptr) == SQLITE_OK)
        return 0;
    LOG_FORMAT(Error, "search db failed. %s ", sqlite3_errmsg(db_zentova));
    return kSearchFailed;
}

int dbaccess::getOttFav1List(std::vector<unsigned int>& values) {
    return searchOTTdb("select favIndex from SQL_OTTFavChannels where favName = 'FAV1'", values);
}

int dbaccess::getOttFav2List(std::vector<unsigned int>& values) {
    return searchOTTdb("select favIndex from SQL_OTTFavChannels where favName = 'FAV2'", values);
}

int dbaccess::getOttFav3List(std::vector<unsigned int>& values) {
    return searchOTTdb("select favIndex from SQL_OTTFavChannels where favName = 'FAV3'", values);
}

int dbaccess::getOttFav4List(std::vector<unsigned int>& values) {
    return searchOTTdb("select favIndex from SQL_OTTFavChannels where favName = 'FAV4'", values);
}
