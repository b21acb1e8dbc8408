// The edit request: checks and reads, one transaction, commit and flush.
#include <cstdlib>

#include "db_access/all_list_edit.h"
#include "db_access/callback_value.h"
#include "db_access/data_version.h"
#include "db_access/edit_entries.h"
#include "db_access/edit_outcome.h"
#include "db_access/edit_transaction.h"
#include "db_access/edited_lists.h"
#include "db_access/fav_list_edit.h"
#include "db_access/session.h"
#include "db_access/waiting_reads.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

constexpr char kItemUpdate[] =
    "UPDATE FavoriteItem SET ChannelNum = ?, isDeleted =? WHERE FavoriteId= ? AND serviceId= ?;";

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
        if (waitAndPrepare(site, kItemUpdate, itemUpdate) != SQLITE_OK)
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

// Everything before the first write. Of a FAV list, whose entries are written as the difference
// from the stored items, it reads these.
EditOutcome planEdit(CallSite const& site, EditedLists const& lists,
                     std::vector<std::string> const& arguments, FavListPlan& plan) {
    if (lists.favIndex() == 0 && entryCount(arguments) == 0) {
        LOG_TEXT_AT(site, kLogModule, Error, "Can't delete all the channels from the all list!");
        return EditOutcome::Failed;
    }
    if (lists.favIndex() == 0)
        return EditOutcome::Done;
    EditOutcome const planned = planFavListEdit(lists.edited, arguments, plan);
    if (plan.itemsWithoutService != 0)
        LOG_FORMAT_AT(site, kLogModule, Error,
                      "%d items of list %d have no service id, passed over",
                      plan.itemsWithoutService, static_cast<int>(lists.edited));
    return planned;
}

EditOutcome writeEdit(EditedLists const& lists, FavListPlan const& plan,
                      std::vector<std::string> const& arguments, Statement& itemUpdate) {
    unsigned int const favIndex = lists.favIndex();
    return favIndex != 0 ? writeFavListEdit(lists.edited, favIndex, plan, itemUpdate)
                         : writeAllListEdit(lists.edited, lists.fav, arguments, itemUpdate);
}

// The edit as long as nobody else writes: lists and stored items are read before the transaction.
// Overtaken, and nothing written, where somebody did since the first look: also where what had
// become stale was refused or could not be written. Once something is written nobody can any more.
//
// Clients are told to read the list again before the transaction, so that they do even when the
// edit fails later.
EditOutcome editUndisturbed(CallSite const& site, std::vector<std::string> const& arguments) {
    EditedLists lists;
    CommitsOfOthers others;
    auto const announce = [&](unsigned int favoriteListId) {
        others.start(db);
        int const code = dbaccess::UpdateListTag(favoriteListId);
        if (code == SQLITE_OK && !isInTransaction(db))  // that of a host commits nothing yet
            others.countOwn();
        return EditOutcome::Done;
    };
    EditOutcome outcome = findLists(site, arguments[0], announce, lists);
    FavListPlan plan;
    if (isDone(outcome))
        outcome = planEdit(site, lists, arguments, plan);
    if (!isDone(outcome))
        return others.came().value_or(false) ? EditOutcome::Overtaken : outcome;
    return editInTransaction(site, Lock::ByFirstWrite, [&](Statement& itemUpdate) {
        EditOutcome const written = writeEdit(lists, plan, arguments, itemUpdate);
        if (!isInTransaction(db))
            return EditOutcome::Failed;  // storage failed, and SQLite rolled all back
        return others.came().value_or(isDone(written)) ? EditOutcome::Overtaken : written;
    });
}

// The same with everything behind the lock. What was announced before it may have been another
// list, which bore the key then: the list is announced here in any case.
EditOutcome editBehindLock(CallSite const& site, std::vector<std::string> const& arguments) {
    auto const announce = [](unsigned int favoriteListId) {
        dbaccess::UpdateListTag(favoriteListId);
        // Some failures roll the whole transaction back, and further writes would stand alone.
        return isInTransaction(db) ? EditOutcome::Done : EditOutcome::Failed;
    };
    return editInTransaction(site, Lock::AtOnce, [&](Statement& itemUpdate) {
        EditedLists lists;
        EditOutcome outcome = findLists(site, arguments[0], announce, lists);
        FavListPlan plan;
        if (isDone(outcome))
            outcome = planEdit(site, lists, arguments, plan);
        return isDone(outcome) ? writeEdit(lists, plan, arguments, itemUpdate) : outcome;
    });
}

EditOutcome editList(CallSite const& site, std::vector<std::string> const& arguments) {
    EditOutcome const checked = checkRequest(site, arguments);
    if (!isDone(checked))
        return checked;
    EditOutcome const outcome = editUndisturbed(site, arguments);
    if (outcome != EditOutcome::Overtaken)
        return outcome;
    LOG_TEXT_AT(site, kLogModule, Notice, "another process wrote meanwhile, start again");
    return editBehindLock(site, arguments);
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
