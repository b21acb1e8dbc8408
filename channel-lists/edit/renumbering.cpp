#include "edit/renumbering.h"

#include <channellist-access/db_access.h>

#include "database/query.h"

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

}  // namespace

bool renumber(List const& favList) {
    ResultLock const lock;
    return waitWhileLocked([&] {  // begin or commit: all of it is done again then
        Transaction const transaction;
        std::string const before = numbersOf(favList);
        dbaccess::renumberFAVList(favList.pid, static_cast<unsigned char>(favList.favIndex));
        if (numbersOf(favList) == before)
            return false;
        dbaccess::UpdateListTag(favList.pid);
        transaction.commit();
        return true;
    });
}

}  // namespace channel_lists
