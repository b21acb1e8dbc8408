// The anchor service of the Astra 19.2E list, and whether that list holds a scrambled service.
#include "db_access/callback_value.h"
#include "db_access/session.h"
#include "db_access/statement.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// "%" stands for the degree sign in whatever encoding the creator has it.
constexpr char kStandardPattern[] = "servicelist://tamun.Astra 19.2%E";
constexpr char kOperatorPattern[] = "servicelist://tamun.Astra 19.2%E.14";

char const* creatorPattern(bool isOperator) {
    return isOperator ? kOperatorPattern : kStandardPattern;
}

// clang-format off
std::string anchorQuery(bool isOperator) {
    return std::string(
        "SELECT sv.Uuid FROM Service sv, DvbService ds, FavoriteItem fi, FavoriteList fl "
        "WHERE sv.Pid = fi.ServiceId AND fi.FavoriteId = fl.Pid "
        "AND Creator like '") + creatorPattern(isOperator) + "' "
        "AND sv.Pid = ds.ServiceId "
        "AND ds.TunerId IN ("
            "SELECT tu.TunerId FROM Tuner tu, DvbSTuner tus WHERE tu.TunerId = tus.TunerId "
            "AND Satellite = 4 "
            "AND Frontend = 4 "
            "AND (tus.Frequency >= 12600750 AND  tus.Frequency <= 12606750)) "
        "AND isDeleted = 0 "
        "ORDER BY ChannelNum;";
}

std::string encryptionQuery(bool isOperator) {
    return std::string(
        "SELECT Encrypted FROM Service sv, FavoriteItem fi, FavoriteList fl "
        "WHERE sv.Pid = fi.ServiceId AND fi.FavoriteId = fl.Pid "
        "AND Creator like '") + creatorPattern(isOperator) + "';";
}
// clang-format on

// Whether a service of the list is encrypted; as far as the rows could be read.
int readScrambleFlag(bool isOperator) {
    int flag = 0;
    char* error = nullptr;
    sqlexec(db, encryptionQuery(isOperator).c_str(), dbaccess::serviceEncryptedCallback, &flag,
            &error);
    return flag;
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int dbaccess::_getAstraAnchorService(std::string& uuid, bool isOperator) {
    LOG_FORMAT(Verbose, " called. isOperator = %d.", isOperator ? 1 : 0);
    Statement query;
    if (query.prepare(db, anchorQuery(isOperator).c_str()) != SQLITE_OK)
        return kFailed;
    if (query.stepQuery("Get a astra anchor service.") == SQLITE_ROW) {
        char const* const text = query.columnText(0);
        if (text != nullptr)
            uuid = text;
    }
    query.finalize();
    if (uuid.empty()) {
        LOG_TEXT(Error, "can't find Astra Anchor Service!");
        return kFailed;
    }
    LOG_FORMAT(Verbose, "The Astra Anchor Service Uuid is [%s].", uuid.c_str());
    return 0;
}

int dbaccess::getAstraAnchorService(std::string& uuid) {
    LOG_TEXT(Verbose, " called.");
    ResultLock const lock;
    if (openChannelDatabase(CALL_SITE, kLogModule) != SQLITE_OK)
        return kFailed;
    int const found = _getAstraAnchorService(uuid, true);
    return found == 0 ? found : _getAstraAnchorService(uuid, false);
}

int dbaccess::checkAstraScrambleService(int& isExistent) {
    LOG_TEXT(Verbose, " called.");
    ResultLock const lock;
    std::string anchor;
    if (openChannelDatabase(CALL_SITE, kLogModule) != SQLITE_OK)
        return kFailed;
    bool const isOperator = _getAstraAnchorService(anchor, true) == 0;
    if (!isOperator) {
        int const found = _getAstraAnchorService(anchor, false);
        if (found != 0) {
            LOG_TEXT(Error, "Astra Scramble Service is missing. Set isExistent 0!");
            isExistent = 0;
            return found;
        }
    }
    int const flag = readScrambleFlag(isOperator);
    LOG_FORMAT(Trace, "Astra %s servicelist %s scramble service.",
               isOperator ? "operator" : "standard", flag != 0 ? "has" : "hasn't");
    isExistent = flag;
    return 0;
}

int dbaccess::serviceEncryptedCallback(void* context, int /*count*/, char** values,
                                       char** /*names*/) {
    // A flag that cannot be read leaves the answer to the other services of the list.
    if (unsignedColumn(values) == 1U)
        *static_cast<int*>(context) = 1;
    return kContinueQuery;
}
