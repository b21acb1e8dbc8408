// The anchor service of the Astra 19.2E list, and whether that list holds a scrambled service.
#include "db_access/callback_value.h"
#include "db_access/data_version.h"
#include "db_access/read_transaction.h"
#include "db_access/session.h"
#include "db_access/waiting_reads.h"

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

enum class Anchor { Found, None, Locked };

constexpr bool isNotNow(int code) {
    int const kind = code & 0xff;  // a host may have asked for extended codes
    return kind == SQLITE_BUSY || kind == SQLITE_LOCKED || kind == SQLITE_PROTOCOL;
}

// Found, with or without a row of the list, when `uuid` is not empty afterwards.
Anchor findAnchor(CallSite const& site, bool isOperator, std::string& uuid) {
    LOG_FORMAT_AT(site, kLogModule, Verbose, " called. isOperator = %d.", isOperator ? 1 : 0);
    Statement query;
    int code = waitAndPrepare(site, anchorQuery(isOperator).c_str(), query);
    if (code != SQLITE_OK)
        return isNotNow(code) ? Anchor::Locked : Anchor::None;
    code = query.stepQuery("Get a astra anchor service.");
    if (code == SQLITE_ROW) {
        char const* const text = query.columnText(0);
        if (text != nullptr)
            uuid = text;
    }
    query.finalize();
    if (uuid.empty() || isNotNow(code)) {
        LOG_TEXT_AT(site, kLogModule, Error, "can't find Astra Anchor Service!");
        return isNotNow(code) ? Anchor::Locked : Anchor::None;
    }
    LOG_FORMAT_AT(site, kLogModule, Verbose, "The Astra Anchor Service Uuid is [%s].",
                  uuid.c_str());
    return Anchor::Found;
}

constexpr char kSearch[] = "_getAstraAnchorService";  // which the search's messages name

// Which Astra list counts, and what a request wants to know of it.
struct AstraAnswer {
    std::string uuid;  // of the anchor; at first what the caller hands over
    Anchor anchor = Anchor::None;
    bool isOperator = true;
    int isScrambled = 0;
    bool isOneState = true;  // what the queries saw, and all of them saw something
};

// The operator's list, then the standard one. An answer of the standard list counts only when the
// operator's was read, and before another connection wrote.
AstraAnswer findList(std::string const& uuid, CommitsOfOthers& others) {
    AstraAnswer answer;
    answer.uuid = uuid;
    answer.anchor = findAnchor(CALL_SITE_OF(kSearch), true, answer.uuid);
    others.start(db);
    if (answer.anchor == Anchor::Found)
        return answer;
    answer.isOneState = answer.anchor != Anchor::Locked;
    answer.isOperator = false;
    answer.anchor = findAnchor(CALL_SITE_OF(kSearch), false, answer.uuid);
    return answer;
}

// The same, and whether a service of the list is encrypted; as far as the rows could be read.
AstraAnswer findScrambled(CallSite const& site, CommitsOfOthers& others) {
    AstraAnswer answer = findList("", others);
    if (answer.anchor != Anchor::Found)
        return answer;
    int const code = waitAndRead(
        site, encryptionQuery(answer.isOperator).c_str(), dbaccess::serviceEncryptedCallback,
        &answer.isScrambled, [&] { answer.isScrambled = 0; }, "Get the scramble flags.");
    if (isNotNow(code))
        answer.anchor = Anchor::Locked;
    return answer;
}

// Looks once, and when that was not one state of the file once more in a transaction. Locked when
// this is none either.
template <typename Look>
AstraAnswer lookAtOneState(CallSite const& site, Look look) {
    CommitsOfOthers others;
    AstraAnswer answer = look(others);
    if (answer.anchor == Anchor::Locked || (answer.isOneState && !others.came().value_or(false)))
        return answer;
    LOG_TEXT_AT(site, kLogModule, Notice, "another process wrote meanwhile, look again");
    std::optional<ReadTransaction> transaction;
    if (!isInTransaction(db))
        transaction.emplace(db, site);
    bool const isFrozen = isInTransaction(db);
    answer = look(others);
    if (transaction)
        transaction->end(site);
    if (!isFrozen || !answer.isOneState)
        answer.anchor = Anchor::Locked;
    return answer;
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int dbaccess::_getAstraAnchorService(std::string& uuid, bool isOperator) {
    return findAnchor(CALL_SITE, isOperator, uuid) == Anchor::Found ? 0 : kFailed;
}

int dbaccess::getAstraAnchorService(std::string& uuid) {
    CallSite const site = CALL_SITE;
    LOG_TEXT(Verbose, " called.");
    ResultLock const lock;
    if (openChannelDatabase(site, kLogModule) != SQLITE_OK)
        return kFailed;
    AstraAnswer answer =
        lookAtOneState(site, [&](CommitsOfOthers& others) { return findList(uuid, others); });
    if (answer.anchor != Anchor::Found)
        return kFailed;
    uuid.swap(answer.uuid);
    return 0;
}

int dbaccess::checkAstraScrambleService(int& isExistent) {
    CallSite const site = CALL_SITE;
    LOG_TEXT(Verbose, " called.");
    ResultLock const lock;
    if (openChannelDatabase(site, kLogModule) != SQLITE_OK)
        return kFailed;
    AstraAnswer const answer =
        lookAtOneState(site, [&](CommitsOfOthers& others) { return findScrambled(site, others); });
    if (answer.anchor == Anchor::Locked)
        return kFailed;  // which has been told
    if (answer.anchor == Anchor::None) {
        LOG_TEXT(Error, "Astra Scramble Service is missing. Set isExistent 0!");
        isExistent = 0;
        return kFailed;
    }
    LOG_FORMAT(Trace, "Astra %s servicelist %s scramble service.",
               answer.isOperator ? "operator" : "standard",
               answer.isScrambled != 0 ? "has" : "hasn't");
    isExistent = answer.isScrambled;
    return 0;
}

int dbaccess::serviceEncryptedCallback(void* context, int /*count*/, char** values,
                                       char** /*names*/) {
    // A flag that cannot be read leaves the answer to the other services of the list.
    if (unsignedColumn(values) == 1U)
        *static_cast<int*>(context) = 1;
    return kContinueQuery;
}
