// Consecutive channel numbers for one FAV list, around the numbers that its OTT channels hold.
#include <algorithm>
#include <iterator>

#include "db_access/broadcast_numbers.h"
#include "db_access/callback_value.h"
#include "db_access/edit_entries.h"
#include "db_access/session.h"
#include "db_access/statement.h"
#include "db_access/waiting_reads.h"
#include "support/number_text.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

using OttListReader = int (*)(std::vector<unsigned int>&);

// By FAV index, from 1.
constexpr OttListReader kOttListReaders[] = {dbaccess::getOttFav1List, dbaccess::getOttFav2List,
                                             dbaccess::getOttFav3List, dbaccess::getOttFav4List};
static_assert(std::size(kOttListReaders) == kFavListCount);

// The trace of the broadcast numbers ends after this many: a foul OTT number of four thousand
// million must not write as many messages.
constexpr std::size_t kTracedNumbers = 65536;

// The items that are not deleted and whose service exists, by channel number.
bool readItems(unsigned int listPid, std::vector<unsigned int>& itemIds, CallSite const& site) {
    std::string const sql =
        "SELECT Id FROM FavoriteItem, Service WHERE FavoriteId = " + numberText(listPid) +
        " AND isDeleted = 0 AND Service.Pid=FavoriteItem.ServiceId "
        " ORDER BY ChannelNum;";
    LOG_FORMAT_AT(site, kLogModule, Verbose, "sql:%s ", sql.c_str());
    char* error = nullptr;
    int const code = sqlexec(db, sql.c_str(), dbaccess::FAVitemIdCallback, &itemIds, &error);
    return code == SQLITE_OK && !itemIds.empty();
}

// One message a number and one for the end, without prefix or line feed. False once the level is
// disabled.
bool traceNumber(unsigned int number) {
    LogDescriptor descriptor(kLogModule, LogLevel::Verbose);
    if (!descriptor.enabled())
        return false;
    orvDebugOutput0(descriptor.words, "%d ", static_cast<int>(number));
    return true;
}

void traceEnd() {
    LogDescriptor descriptor(kLogModule, LogLevel::Verbose);
    if (descriptor.enabled())
        orvDebugOutput0(descriptor.words, "].");
}

void traceNumbers(std::vector<unsigned int> const& ottNumbers, int favIndex, CallSite const& site) {
    LOG_FORMAT_AT(site, kLogModule, Verbose, "OTT Channel Number in FAV%d list:[", favIndex);
    for (unsigned int const number : ottNumbers)
        if (!traceNumber(number))
            break;
    traceEnd();
    if (ottNumbers.empty()) {
        LOG_FORMAT_AT(site, kLogModule, Verbose, "There's NO OTT service in FAV%d", favIndex);
        return;
    }
    LOG_FORMAT_AT(site, kLogModule, Verbose, "Broadcast Channel Number in FAV%d list:[", favIndex);
    BroadcastNumbers numbers(ottNumbers);
    for (std::size_t traced = 0; traced < kTracedNumbers && numbers.merging(); ++traced)
        if (!traceNumber(numbers.next()))
            break;
    traceEnd();
}

// After a failing step every further one fails too and is logged: the statement is gone.
void writeNumbers(std::vector<unsigned int> const& itemIds, BroadcastNumbers numbers,
                  Statement& update, CallSite const& site) {
    for (unsigned int const itemId : itemIds) {
        std::uint32_t const number = numbers.next();
        LOG_FORMAT_AT(site, kLogModule, Verbose, " New channelNumer:%d ", static_cast<int>(number));
        update.rebind(number, itemId);
        update.step("Renumber fav item in the case of All list edit.");
    }
}

void storeHighestNumber(unsigned int listPid) {
    std::string const pid = numberText(listPid);
    std::string const sql =
        "UPDATE FavoriteList SET MaxChannelNumber = (SELECT max(ChannelNum) FROM FavoriteItem"
        " WHERE FavoriteId=" +
        pid + " AND isDeleted = 0) WHERE Pid = " + pid + ";";
    char* error = nullptr;
    sqlexec(db, sql.c_str(), nullptr, nullptr, &error);
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int dbaccess::renumberFAVList(unsigned int listPid, unsigned char favIndex) {
    CallSite const site = CALL_SITE;
    if (favIndex < 1 || favIndex > std::size(kOttListReaders)) {
        LOG_FORMAT(Notice, "FAV index is invalid: %d.", favIndex);
        return kFailed;
    }
    if (db == nullptr) {
        LOG_TEXT(Error, "the channel database is not open");
        return kFailed;
    }
    bool const inTransaction = sqlite3_get_autocommit(db) == 0;
    std::vector<unsigned int> itemIds;
    if (!readItems(listPid, itemIds, site)) {
        LOG_FORMAT(Notice, "FAV%d list doesn't have any service!", favIndex);
        return kFailed;
    }
    std::vector<unsigned int> ottNumbers;
    kOttListReaders[favIndex - 1](ottNumbers);
    std::sort(ottNumbers.begin(), ottNumbers.end());
    traceNumbers(ottNumbers, favIndex, site);
    {
        Statement update;
        if (waitAndPrepare(site, "UPDATE FavoriteItem SET ChannelNum = ? WHERE Id = ?; ", update) !=
            SQLITE_OK)
            return kFailed;
        writeNumbers(itemIds, BroadcastNumbers(ottNumbers), update, site);
    }
    if (inTransaction && sqlite3_get_autocommit(db) != 0) {
        LOG_TEXT(Error, "the edit around the renumbering was rolled back");
        return kFailed;
    }
    storeHighestNumber(listPid);
    return 0;
}

int dbaccess::FAVitemIdCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    return appendUnsigned(values, *static_cast<std::vector<unsigned int>*>(context));
}
