// The edit request: checks and reads, one transaction, commit and flush.
#include <algorithm>
#include <cstdlib>

#include "db_access/all_list_edit.h"
#include "db_access/callback_value.h"
#include "db_access/data_version.h"
#include "db_access/edit_entries.h"
#include "db_access/edit_transaction.h"
#include "db_access/fav_list_edit.h"
#include "db_access/session.h"
#include "db_access/sql_literal.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

constexpr char kItemUpdate[] =
    "UPDATE FavoriteItem SET ChannelNum = ?, isDeleted =? WHERE FavoriteId= ? AND serviceId= ?;";

// The key of the list, 0 when there is none or it cannot be read.
unsigned int findList(std::string const& uuid) {
    std::string const sql =
        "SELECT Pid FROM FavoriteList WHERE Uuid = '" + sqlLiteralBody(uuid) + "';";
    unsigned int pid = 0;
    char* error = nullptr;
    int const code = sqlexec(db, sql.c_str(), dbaccess::listIdCallback, &pid, &error);
    return code == SQLITE_OK ? pid : 0;
}

// Reads the keys of the FAV lists; position p is FAV(p + 1). False unless there are four.
bool findFavLists(std::vector<unsigned int>& favListIds) {
    char* error = nullptr;
    int const code = sqlexec(db, "SELECT Pid FROM FavoriteList WHERE Creator like 'User.tvFAV%' ;",
                             dbaccess::FAVlistIdCallback, &favListIds, &error);
    return code == SQLITE_OK && favListIds.size() == kFavListCount;
}

enum class Lock { ByFirstWrite, AtOnce };

// Runs `write` inside a transaction, with the item update that both kinds of edit use. Returns its
// status, once committed and flushed; everything is rolled back when it, or a step around it,
// fails.
template <typename Write>
int editInTransaction(CallSite const& site, Lock lock, Write write) {
    EditTransaction transaction(db);
    int const begun = lock == Lock::AtOnce ? transaction.beginLocked(site) : transaction.begin();
    if (begun != SQLITE_OK)
        return kFailed;
    int status;
    {
        Statement itemUpdate;
        if (itemUpdate.prepare(db, kItemUpdate) != SQLITE_OK)
            return kFailed;
        status = write(itemUpdate);
    }
    if (status < 0)
        return status;
    LOG_TEXT_AT(site, kLogModule, Verbose, "COMMIT TRANSACTION.");
    if (transaction.commit(site) != SQLITE_OK)
        return kFailed;
    // The edit stands whatever this gives, and in a host that ignores SIGCHLD it always gives -1.
    [[maybe_unused]] int const flushed = std::system("sync");
    return status;
}

// The edit of FAV list `favIndex`. Its entries are written as the difference from the stored items,
// which are read before the transaction; where another process wrote in between, the difference is
// worked out once more, behind the lock.
int editFavList(CallSite const& site, unsigned int favoriteListId, unsigned int favIndex,
                std::vector<std::string> const& arguments) {
    constexpr int kOvertaken = -3;
    FavListPlan plan;
    int const planned = planFavListEdit(favoriteListId, arguments, plan);
    if (planned != 0)
        return planned;
    std::optional<unsigned int> const version = dataVersion(db);
    int const status = editInTransaction(site, Lock::ByFirstWrite, [&](Statement& itemUpdate) {
        int const written = writeFavListEdit(favoriteListId, favIndex, plan, itemUpdate);
        return written < 0 || (version && dataVersion(db) == version) ? written : kOvertaken;
    });
    if (status != kOvertaken)
        return status;
    LOG_TEXT_AT(site, kLogModule, Notice, "another process wrote meanwhile, plan again");
    return editInTransaction(site, Lock::AtOnce, [&](Statement& itemUpdate) {
        FavListPlan again;
        int const plannedAgain = planFavListEdit(favoriteListId, arguments, again);
        return plannedAgain != 0 ? plannedAgain
                                 : writeFavListEdit(favoriteListId, favIndex, again, itemUpdate);
    });
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int dbaccess::onServiceListEdit(std::vector<std::string> arguments) {
    CallSite const site = CALL_SITE;
    int const count = static_cast<int>(arguments.size());
    LOG_FORMAT(Verbose, " called,  arguments.size:%d.", count);
    ResultLock const lock;
    if (openChannelDatabase(site, kLogModule) != SQLITE_OK)
        return kFailed;
    if (arguments.size() % kStringsPerEntry != 1) {
        LOG_FORMAT(Error, "Wrong number of arguments: %d.", count);
        return kMalformed;
    }
    if (arguments[0].empty()) {
        LOG_TEXT(Error, "Favorite list is not defined");
        return kFailed;
    }
    unsigned int const favoriteListId = findList(arguments[0]);
    if (favoriteListId == 0) {
        LOG_TEXT(Error, "can't find favoriteListId");
        return kFailed;
    }
    LOG_FORMAT(Verbose, "The edited list's Id is [%d].", static_cast<int>(favoriteListId));
    // Before the transaction: clients read the list again even when the edit fails later.
    UpdateListTag(favoriteListId);

    std::vector<unsigned int> favListIds;
    if (!findFavLists(favListIds)) {
        LOG_FORMAT(Error, "Number of FAV lists is wrong: %d!", static_cast<int>(favListIds.size()));
        return kFailed;
    }
    auto const favList = std::find(favListIds.begin(), favListIds.end(), favoriteListId);
    if (favList == favListIds.end()) {
        if (entryCount(arguments) == 0) {
            LOG_TEXT(Error, "Can't delete all the channels from the all list!");
            return kFailed;
        }
        return editInTransaction(site, Lock::ByFirstWrite, [&](Statement& itemUpdate) {
            return writeAllListEdit(favoriteListId, favListIds, arguments, itemUpdate);
        });
    }
    auto const favIndex = static_cast<unsigned int>(favList - favListIds.begin()) + 1;
    LOG_FORMAT(Verbose, "The edited list is FAV[%d] list.", static_cast<int>(favIndex));
    return editFavList(site, favoriteListId, favIndex, arguments);
}

int dbaccess::listIdCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    return storeUnsigned(values, *static_cast<unsigned int*>(context));
}

int dbaccess::FAVlistIdCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    return appendUnsigned(values, *static_cast<std::vector<unsigned int>*>(context));
}
