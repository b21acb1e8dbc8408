// The services of one list, in the order in which the set shows them.
#include "db_access/busy_retry.h"
#include "db_access/read_transaction.h"
#include "db_access/session.h"
#include "db_access/sql_literal.h"
#include "dbservice_query_result/service_columns.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;
constexpr int kBusyTimeoutMilliseconds = 1000;
constexpr unsigned int kOrderByMediaType = 0x200;  // of a list's attributes

std::string serviceQuery(std::string const& favoriteUuId, bool byMediaType) {
    std::string sql = "SELECT ";
    sql += kServiceColumnList;
    sql += " FROM FavoriteItemView WHERE FavoriteId=(select Pid From FavoriteList Where Uuid=";
    sql += sqlLiteral(favoriteUuId);
    sql += byMediaType ? ") ORDER BY MediaType ASC, ChannelNum ASC;" : ") ORDER BY ChannelNum;";
    return sql;
}

// Runs the query, over again while the database is busy; rows of an attempt that failed so are
// dropped, that none comes twice. Returns SQLite's code.
//
// A host may pass no result with a list that has no rows: `rows` is looked at only where it exists.
int queryServices(sqlite3* connection, std::string const& sql, ResultSet* rows,
                  CallSite const& site) {
    std::size_t const before = rows != nullptr ? rows->size() : 0;
    return retryWhileBusy(kQueryAttempts, site, kLogModule, [&] {
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

// Whether the list's attributes ask for the order by media type.
struct Order {
    int code = SQLITE_OK;  // of the lookup; without it the order is that of the channel numbers
    bool byMediaType = false;
};

Order readOrder(std::string const& favoriteUuId, CallSite const& site) {
    Order order;
    unsigned int attributes = 0;
    order.code = dbaccess::getFavriteAttributes(favoriteUuId, &attributes);
    order.byMediaType = order.code == SQLITE_OK && (attributes & kOrderByMediaType) != 0;
    if (order.byMediaType)
        LOG_TEXT_AT(site, kLogModule, Verbose,
                    "Some Operators Order by MediaType then ChnanelNum.");
    LOG_FORMAT_AT(site, kLogModule, Verbose, "attributes: %d.", static_cast<int>(attributes));
    return order;
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
    CallSite const site = CALL_SITE;
    auto* const rows = static_cast<ResultSet*>(result);
    std::size_t const before = rows != nullptr ? rows->size() : 0;
    ReadTransaction transaction(connection, site);
    Order const order = readOrder(favoriteUuId, site);
    int const code =
        queryServices(connection, serviceQuery(favoriteUuId, order.byMediaType), rows, site);
    // A lock (of a connection with a shared cache: SQLITE_LOCKED) that kept the order from us, but
    // not the rows: the transaction shows the same state to both now.
    bool const wasLocked = order.code == SQLITE_BUSY || order.code == SQLITE_LOCKED;
    bool const isOrderMissing = wasLocked && code == SQLITE_OK;
    if (isOrderMissing && rows != nullptr && readOrder(favoriteUuId, site).byMediaType) {
        rows->resize(before);
        queryServices(connection, serviceQuery(favoriteUuId, true), rows, site);
    }
    return transaction.end(site);
}
