#include "db_access/edited_lists.h"

#include <algorithm>

#include "db_access/edit_entries.h"
#include "db_access/session.h"
#include "db_access/sql_literal.h"
#include "db_access/waiting_reads.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// Stores the one number that the query gives, 0 when there is none or it cannot be read. Returns
// SQLite's code.
int readNumber(CallSite const& site, std::string const& sql, unsigned int& number,
               char const* hint) {
    int const code = waitAndRead(
        site, sql.c_str(), dbaccess::listIdCallback, &number, [&] { number = 0; }, hint);
    if (code != SQLITE_OK)
        number = 0;
    return code;
}

EditOutcome findList(CallSite const& site, std::string const& uuid, unsigned int& pid) {
    std::string const sql = "SELECT Pid FROM FavoriteList WHERE Uuid = " + sqlLiteral(uuid) + ";";
    if (readNumber(site, sql, pid, "Find the list.") == SQLITE_BUSY)
        return EditOutcome::Failed;  // which has been told
    if (pid == 0) {
        LOG_TEXT_AT(site, kLogModule, Error, "can't find favoriteListId");
        return EditOutcome::Failed;
    }
    LOG_FORMAT_AT(site, kLogModule, Verbose, "The edited list's Id is [%d].",
                  static_cast<int>(pid));
    return EditOutcome::Done;
}

// Their order is SQLite's, by which a list is FAV1 or FAV4. A host may have asked its
// connection for the reverse of any such order; SQLite is asked only where the keys look like it.
EditOutcome undoReverseOrder(std::vector<unsigned int>& pids) {
    if (!std::is_sorted(pids.rbegin(), pids.rend()))
        return EditOutcome::Done;
    unsigned int isReversed = 0;
    char* error = nullptr;
    if (sqlexec(db, "PRAGMA reverse_unordered_selects;", dbaccess::listIdCallback, &isReversed,
                &error) != SQLITE_OK)
        return EditOutcome::Failed;  // which has been told
    if (isReversed != 0)
        std::reverse(pids.begin(), pids.end());
    return EditOutcome::Done;
}

// All four: both kinds of edit need them.
EditOutcome findFavLists(CallSite const& site, std::vector<unsigned int>& pids) {
    int const code = waitAndRead(
        site, "SELECT Pid FROM FavoriteList WHERE Creator like 'User.tvFAV%' ;",
        dbaccess::FAVlistIdCallback, &pids, [&] { pids.clear(); }, "Find the FAV lists.");
    if (code == SQLITE_BUSY)
        return EditOutcome::Failed;  // which has been told
    if (code != SQLITE_OK || pids.size() != kFavListCount) {
        LOG_FORMAT_AT(site, kLogModule, Error, "Number of FAV lists is wrong: %d!",
                      static_cast<int>(pids.size()));
        return EditOutcome::Failed;
    }
    return undoReverseOrder(pids);
}

}  // namespace

unsigned int EditedLists::favIndex() const {
    auto const found = std::find(fav.begin(), fav.end(), edited);
    return found == fav.end() ? 0 : static_cast<unsigned int>(found - fav.begin()) + 1;
}

EditOutcome findLists(CallSite const& site, std::string const& uuid,
                      std::function<EditOutcome(unsigned int favoriteListId)> const& announce,
                      EditedLists& lists) {
    EditOutcome outcome = findList(site, uuid, lists.edited);
    if (isDone(outcome))
        outcome = announce(lists.edited);
    if (isDone(outcome))
        outcome = findFavLists(site, lists.fav);
    if (isDone(outcome) && lists.favIndex() != 0)
        LOG_FORMAT_AT(site, kLogModule, Verbose, "The edited list is FAV[%d] list.",
                      static_cast<int>(lists.favIndex()));
    return outcome;
}

}  // namespace channellist
