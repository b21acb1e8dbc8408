// The edit request: checks and reads, one transaction, commit and flush.
#include <algorithm>
#include <cstdlib>

#include "db_access/all_list_edit.h"
#include "db_access/callback_value.h"
#include "db_access/data_version.h"
#include "db_access/edit_entries.h"
#include "db_access/edit_outcome.h"
#include "db_access/edit_reads.h"
#include "db_access/edit_transaction.h"
#include "db_access/fav_list_edit.h"
#include "db_access/session.h"
#include "db_access/sql_literal.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

constexpr char kItemUpdate[] =
    "UPDATE FavoriteItem SET ChannelNum = ?, isDeleted =? WHERE FavoriteId= ? AND serviceId= ?;";

// Stores the key of the list, 0 when there is none or it cannot be read. Returns SQLite's code.
int findList(CallSite const& site, std::string const& uuid, unsigned int& pid) {
    std::string const sql = "SELECT Pid FROM FavoriteList WHERE Uuid = " + sqlLiteral(uuid) + ";";
    int const code = readForEdit(
        site, sql.c_str(), dbaccess::listIdCallback, &pid, [&] { pid = 0; }, "Find the list.");
    if (code != SQLITE_OK)
        pid = 0;
    return code;
}

// Reads the keys of the FAV lists; position p is FAV(p + 1). Returns SQLite's code.
int findFavLists(CallSite const& site, std::vector<unsigned int>& favListIds) {
    return readForEdit(
        site, "SELECT Pid FROM FavoriteList WHERE Creator like 'User.tvFAV%' ;",
        dbaccess::FAVlistIdCallback, &favListIds, [&] { favListIds.clear(); },
        "Find the FAV lists.");
}

enum class Lock { ByFirstWrite, AtOnce };

// Runs `write` inside a transaction, with the item update that both kinds of edit use. Gives its
// outcome, once committed and flushed; everything is rolled back when it, or a step around it,
// fails.
template <typename Write>
EditOutcome editInTransaction(CallSite const& site, Lock lock, Write write) {
    EditTransaction transaction(db);
    int const begun = lock == Lock::AtOnce ? transaction.beginLocked(site) : transaction.begin();
    if (begun != SQLITE_OK)
        return EditOutcome::Failed;
    EditOutcome outcome;
    {
        Statement itemUpdate;
        if (prepareForEdit(site, kItemUpdate, itemUpdate) != SQLITE_OK)
            return EditOutcome::Failed;
        outcome = write(itemUpdate);
    }
    if (!isDone(outcome))
        return outcome;
    LOG_TEXT_AT(site, kLogModule, Verbose, "COMMIT TRANSACTION.");
    if (transaction.commit(site) != SQLITE_OK)
        return EditOutcome::Failed;
    // The edit stands whatever this gives, and in a host that ignores SIGCHLD it always gives -1.
    [[maybe_unused]] int const flushed = std::system("sync");
    return outcome;
}

// The edit of FAV list `favIndex`. Its entries are written as the difference from the stored items,
// which are read before the transaction; where another process wrote in between, the difference is
// worked out once more, behind the lock: also where writing the stale one failed.
//
// The data version tells of other connections alone, and only between a read before and a read or
// write after: nothing but the plan's own query stands between planning and asking for it, and it
// is asked again before the commit.
EditOutcome editFavList(CallSite const& site, unsigned int favoriteListId, unsigned int favIndex,
                        std::vector<std::string> const& arguments) {
    FavListPlan plan;
    EditOutcome const planned = planFavListEdit(favoriteListId, arguments, plan);
    if (plan.itemsWithoutService != 0)
        LOG_FORMAT_AT(site, kLogModule, Error,
                      "%d items of list %d have no service id, passed over",
                      plan.itemsWithoutService, static_cast<int>(favoriteListId));
    if (!isDone(planned))
        return planned;
    std::optional<unsigned int> const version = dataVersion(db);
    EditOutcome const outcome =
        editInTransaction(site, Lock::ByFirstWrite, [&](Statement& itemUpdate) {
            EditOutcome const written =
                writeFavListEdit(favoriteListId, favIndex, plan, itemUpdate);
            bool const isOvertaken = version ? dataVersion(db) != version : isDone(written);
            return isOvertaken ? EditOutcome::Overtaken : written;
        });
    if (outcome != EditOutcome::Overtaken)
        return outcome;
    if (version)
        LOG_TEXT_AT(site, kLogModule, Notice, "another process wrote meanwhile, plan again");
    return editInTransaction(site, Lock::AtOnce, [&](Statement& itemUpdate) {
        FavListPlan again;
        EditOutcome const plannedAgain = planFavListEdit(favoriteListId, arguments, again);
        return isDone(plannedAgain) ? writeFavListEdit(favoriteListId, favIndex, again, itemUpdate)
                                    : plannedAgain;
    });
}

EditOutcome editOtherList(CallSite const& site, unsigned int favoriteListId,
                          std::vector<unsigned int> const& favListIds,
                          std::vector<std::string> const& arguments) {
    if (entryCount(arguments) == 0) {
        LOG_TEXT_AT(site, kLogModule, Error, "Can't delete all the channels from the all list!");
        return EditOutcome::Failed;
    }
    return editInTransaction(site, Lock::ByFirstWrite, [&](Statement& itemUpdate) {
        return writeAllListEdit(favoriteListId, favListIds, arguments, itemUpdate);
    });
}

// The checks of the request itself.
EditOutcome checkRequest(CallSite const& site, std::vector<std::string> const& arguments) {
    if (arguments.size() % kStringsPerEntry != 1) {
        LOG_FORMAT_AT(site, kLogModule, Error, "Wrong number of arguments: %d.",
                      static_cast<int>(arguments.size()));
        return EditOutcome::Malformed;
    }
    if (arguments[0].empty()) {
        LOG_TEXT_AT(site, kLogModule, Error, "Favorite list is not defined");
        return EditOutcome::Failed;
    }
    return EditOutcome::Done;
}

// Finds the list, and tells clients to read it again: before the transaction, so that they do even
// when the edit fails later.
EditOutcome announceEdit(CallSite const& site, std::string const& uuid,
                         unsigned int& favoriteListId) {
    if (findList(site, uuid, favoriteListId) == SQLITE_BUSY)
        return EditOutcome::Failed;  // which has been told
    if (favoriteListId == 0) {
        LOG_TEXT_AT(site, kLogModule, Error, "can't find favoriteListId");
        return EditOutcome::Failed;
    }
    LOG_FORMAT_AT(site, kLogModule, Verbose, "The edited list's Id is [%d].",
                  static_cast<int>(favoriteListId));
    dbaccess::UpdateListTag(favoriteListId);
    return EditOutcome::Done;
}

// Finds the FAV lists: both kinds of edit need all of them.
EditOutcome findAllFavLists(CallSite const& site, std::vector<unsigned int>& favListIds) {
    int const found = findFavLists(site, favListIds);
    if (found == SQLITE_BUSY)
        return EditOutcome::Failed;  // which has been told
    if (found != SQLITE_OK || favListIds.size() != kFavListCount) {
        LOG_FORMAT_AT(site, kLogModule, Error, "Number of FAV lists is wrong: %d!",
                      static_cast<int>(favListIds.size()));
        return EditOutcome::Failed;
    }
    return EditOutcome::Done;
}

EditOutcome editList(CallSite const& site, std::vector<std::string> const& arguments) {
    EditOutcome outcome = checkRequest(site, arguments);
    unsigned int favoriteListId = 0;
    if (isDone(outcome))
        outcome = announceEdit(site, arguments[0], favoriteListId);
    std::vector<unsigned int> favListIds;
    if (isDone(outcome))
        outcome = findAllFavLists(site, favListIds);
    if (!isDone(outcome))
        return outcome;
    auto const favList = std::find(favListIds.begin(), favListIds.end(), favoriteListId);
    if (favList == favListIds.end())
        return editOtherList(site, favoriteListId, favListIds, arguments);
    auto const favIndex = static_cast<unsigned int>(favList - favListIds.begin()) + 1;
    LOG_FORMAT_AT(site, kLogModule, Verbose, "The edited list is FAV[%d] list.",
                  static_cast<int>(favIndex));
    return editFavList(site, favoriteListId, favIndex, arguments);
}

}  // namespace
}  // namespace channellist

using namespace channellist;

// NOLINTNEXTLINE(performance-unnecessary-value-param): a signature that hosts are linked with
int dbaccess::onServiceListEdit(std::vector<std::string> arguments) {
    CallSite const site = CALL_SITE;
    LOG_FORMAT(Verbose, " called,  arguments.size:%d.", static_cast<int>(arguments.size()));
    ResultLock const lock;
    if (openChannelDatabase(site, kLogModule) != SQLITE_OK)
        return kFailed;
    return resultOf(editList(site, arguments));
}

int dbaccess::listIdCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    return storeUnsigned(values, *static_cast<unsigned int*>(context));
}

int dbaccess::FAVlistIdCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    return appendUnsigned(values, *static_cast<std::vector<unsigned int>*>(context));
}
