#include "database/query.h"

#include "failure.h"

namespace channel_lists {

Query::Query(sqlite3* connection, std::string const& sql) : connection_(connection) {
    sqlite3_stmt* statement = nullptr;
    int const code = sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
    statement_.reset(statement);
    if (code != SQLITE_OK)
        fail();
}

void Query::fail() const {
    std::string const sentence =
        std::string("the database cannot be read: ") + sqlite3_errmsg(connection_);
    if (sqlite3_errcode(connection_) == SQLITE_BUSY)
        throw Locked(sentence);
    throw Failure(sentence);
}

Query& Query::bind(std::string const& text) {
    if (sqlite3_bind_text(statement_.get(), ++bound_, text.data(), static_cast<int>(text.size()),
                          SQLITE_TRANSIENT) != SQLITE_OK)
        fail();
    return *this;
}

Query& Query::bind(std::int64_t number) {
    if (sqlite3_bind_int64(statement_.get(), ++bound_, number) != SQLITE_OK)
        fail();
    return *this;
}

bool Query::next() {
    switch (sqlite3_step(statement_.get())) {
        case SQLITE_ROW:
            return true;
        case SQLITE_DONE:
            return false;
        default:
            fail();
            return false;
    }
}

void Query::reset() {
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
    bound_ = 0;
}

bool Query::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

bool Query::isInteger(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_INTEGER;
}

std::string Query::text(int column) const {
    auto const* bytes =
        reinterpret_cast<char const*>(sqlite3_column_text(statement_.get(), column));
    return bytes == nullptr ? std::string() : std::string(bytes);
}

std::int64_t Query::number(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

int Query::columns() const { return sqlite3_column_count(statement_.get()); }
std::string Query::name(int column) const { return sqlite3_column_name(statement_.get(), column); }

std::int64_t queryNumber(sqlite3* connection, std::string const& sql) {
    Query query(connection, sql);
    return query.next() ? query.number(0) : 0;
}

}  // namespace channel_lists
