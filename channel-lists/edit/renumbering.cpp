#include "edit/renumbering.h"

#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>

#include <optional>

#include "database/query.h"
#include "failure.h"

namespace channel_lists {
namespace {

class ResultLock {
  public:
    ResultLock() { pthread_mutex_lock(&svresult_mutex); }
    ~ResultLock() { pthread_mutex_unlock(&svresult_mutex); }
    ResultLock(ResultLock const&) = delete;
    ResultLock& operator=(ResultLock const&) = delete;
};

// Rolled back unless it was committed.
class Transaction {
  public:
    Transaction() { Query(db, "BEGIN IMMEDIATE TRANSACTION").next(); }
    ~Transaction() {
        if (sqlite3_get_autocommit(db) == 0)
            sqlite3_exec(db, "ROLLBACK TRANSACTION", nullptr, nullptr, nullptr);
    }
    Transaction(Transaction const&) = delete;
    Transaction& operator=(Transaction const&) = delete;
    static void commit() { Query(db, "COMMIT TRANSACTION").next(); }
};

std::string numbersOf(List const& list) {
    Query items(db, "SELECT Id, ChannelNum FROM FavoriteItem WHERE FavoriteId = ? ORDER BY Id");
    items.bind(std::int64_t{list.pid});
    std::string numbers;
    while (items.next())
        numbers += items.text(0) + ' ' + items.text(1) + '\n';
    return numbers;
}

// The library gives success, too, for a number that the database did not take. Each number is a row
// that changes, and so is the highest one in the list's own row.
void renumberAll(List const& list) {
    std::int64_t const shown = queryNumber(
        db,
        "SELECT count(*) FROM FavoriteItem, Service WHERE isDeleted = 0 AND Pid = ServiceId AND"
        " FavoriteId = " +
            std::to_string(list.pid));
    int const before = sqlite3_total_changes(db);
    dbaccess::renumberFAVList(list.pid, static_cast<unsigned char>(list.favIndex));
    if (shown > 0 && sqlite3_total_changes(db) - before < shown + 1)
        throw Failure("the database does not take every new number");
}

// By whatever key it has now.
List asItIsNow(List const& favList) {
    std::optional<List> found;
    for (List const& list : allLists())
        if (list.uuid == favList.uuid && list.favIndex != 0 && (!found || list.pid == favList.pid))
            found = list;
    if (!found)
        throw Failure("the list is in the database no more");
    return *found;
}

}  // namespace

bool renumber(List const& favList) {
    ResultLock const lock;
    return waitWhileLocked([&] {  // begin or commit: all of it is done again then
        Transaction const transaction;
        List const list = asItIsNow(favList);
        std::string const before = numbersOf(list);
        renumberAll(list);
        if (numbersOf(list) == before)
            return false;
        dbaccess::UpdateListTag(list.pid);
        if (channel_database::isMoved(db))
            throw Failure("the database was replaced or renamed meanwhile");
        transaction.commit();
        return true;
    });
}

}  // namespace channel_lists
