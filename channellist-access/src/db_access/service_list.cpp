// The services of one list, in the order in which the set shows them.
#include "db_access/busy_retry.h"
#include "db_access/session.h"
#include "db_access/spare_rollback.h"
#include "db_access/sql_literal.h"
#include "dbservice_query_result/service_columns.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;
constexpr int kBusyTimeoutMilliseconds = 1000;
constexpr unsigned int kOrderByMediaType = 0x200;  // of a list's attributes

// The read transaction of one query: the attribute lookup and the rows see one state of the file,
// as long as the lookup's `db` is this connection. When the frame is left without end(), or COMMIT
// fails, what was begun here is rolled back.
class ReadTransaction {
  public:
    ReadTransaction(sqlite3* connection, CallSite const& site) : connection_(connection) {
        int const code = spare_.prepare(connection);
        if (code == SQLITE_OK)
            open_ = run("BEGIN TRANSACTION", site) == SQLITE_OK;
        else
            LOG_FORMAT_AT(site, kLogModule, Error, "SQL error:%d", code);
    }
    ~ReadTransaction() {
        if (open_)
            spare_.finish(connection_);
    }
    ReadTransaction(ReadTransaction const&) = delete;
    ReadTransaction& operator=(ReadTransaction const&) = delete;

    // COMMIT is issued even when BEGIN failed.
    int end(CallSite const& site) {
        int const code = run("COMMIT TRANSACTION", site);
        open_ = open_ && code != SQLITE_OK;
        return code;
    }

  private:
    int run(char const* sql, CallSite const& site) {
        int const code = sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK)
            LOG_FORMAT_AT(site, kLogModule, Error, "SQL error:%d", code);
        return code;
    }

    sqlite3* connection_;
    SpareRollback spare_;
    bool open_ = false;
};

std::string serviceQuery(std::string const& favoriteUuId, bool byMediaType) {
    std::string sql = "SELECT ";
    sql += kServiceColumnList;
    sql += " FROM FavoriteItemView WHERE FavoriteId=(select Pid From FavoriteList Where Uuid=";
    sql += sqlLiteral(favoriteUuId);
    sql += byMediaType ? ") ORDER BY MediaType ASC, ChannelNum ASC;" : ") ORDER BY ChannelNum;";
    return sql;
}

// Runs the query, over again while the database is busy; rows of an attempt that failed so are
// dropped, that none comes twice.
//
// A host may pass no result with a list that has no rows: `rows` is looked at only where it exists.
void queryServices(sqlite3* connection, std::string const& sql, ResultSet* rows,
                   CallSite const& site) {
    std::size_t const before = rows != nullptr ? rows->size() : 0;
    retryWhileBusy(kQueryAttempts, site, kLogModule, [&] {
        m_selectedServiceListId = 1;
        int const code =
            sqlite3_exec(connection, sql.c_str(), dbaccess::service_callback, rows, nullptr);
        if (code != SQLITE_OK)
            LOG_FORMAT_AT(site, kLogModule, Error, "SQL error:%d", code);
        if (code == SQLITE_BUSY && rows != nullptr)
            rows->resize(before);
        if (code == SQLITE_NOMEM && rows != nullptr && rows->size() > before)
            rows->pop_back();  // SQLite handed out a null where it lacked memory for a text
        return code;
    });
}

}  // namespace
}  // namespace channellist

using namespace channellist;

ResultSet dbaccess::get_dbservices(std::string favoriteUuId) {
    LOG_FORMAT(Trace, "called,favoriteUuId:%s ", favoriteUuId.c_str());
    ResultLock const lock;
    ResultSet rows;
    if (openChannelDatabaseKeepingHandle(CALL_SITE) == SQLITE_OK) {
        sqlite3_busy_timeout(db, kBusyTimeoutMilliseconds);
        if (initViews(db) == SQLITE_OK)
            select_dbservice(db, favoriteUuId, &rows);
    }
    LOG_FORMAT(Trace, "end,size:%d ", static_cast<int>(rows.size()));
    return rows;
}

int dbaccess::select_dbservice(sqlite3* connection, std::string favoriteUuId, void* result) {
    ReadTransaction transaction(connection, CALL_SITE);
    unsigned int attributes = 0;
    bool const byMediaType = getFavriteAttributes(favoriteUuId, &attributes) == SQLITE_OK &&
                             (attributes & kOrderByMediaType) != 0;
    if (byMediaType)
        LOG_TEXT(Verbose, "Some Operators Order by MediaType then ChnanelNum.");
    std::string const sql = serviceQuery(favoriteUuId, byMediaType);
    LOG_FORMAT(Verbose, "attributes: %d.", static_cast<int>(attributes));
    queryServices(connection, sql, static_cast<ResultSet*>(result), CALL_SITE);
    return transaction.end(CALL_SITE);
}
