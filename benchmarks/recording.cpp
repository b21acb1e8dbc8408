#include "recording.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "connection.h"

namespace benchmarks {

namespace {

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, Finalize>;

PreparedStatement prepare(Recording::Statement const& statement) {
    sqlite3_stmt* handle = nullptr;
    int const code =
        sqlite3_prepare_v2(statement.connection, statement.sql.c_str(), -1, &handle, nullptr);
    expectCode(statement.connection, code, SQLITE_OK, statement.sql);
    return PreparedStatement(handle);
}

void execute(Recording::Statement const& statement, Recording::RowCallback callback,
             void* context) {
    int const code =
        sqlite3_exec(statement.connection, statement.sql.c_str(), callback, context, nullptr);
    expectCode(statement.connection, code, SQLITE_OK, statement.sql);
}

}  // namespace

Recording::Recording(std::vector<sqlite3*> const& connections,
                     std::function<void()> const& request) {
    for (sqlite3* const connection : connections)
        sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, note, this);
    request();
    for (sqlite3* const connection : connections)
        sqlite3_trace_v2(connection, 0, nullptr, nullptr);
}

int Recording::note(unsigned int /*event*/, void* context, void* handle, void* /*text*/) {
    auto& self = *static_cast<Recording*>(context);
    auto* const statement = static_cast<sqlite3_stmt*>(handle);
    sqlite3* const connection = sqlite3_db_handle(statement);
    std::string const sql = sqlite3_sql(statement);
    auto const known = std::find_if(
        self.statements_.begin(), self.statements_.end(),
        [&](Statement const& other) { return other.connection == connection && other.sql == sql; });
    Run run = {static_cast<std::size_t>(known - self.statements_.begin()), 0, {}};
    if (known == self.statements_.end())
        self.statements_.push_back({connection, sql});

    if (sqlite3_bind_parameter_count(statement) > 0)
        run.setValues(sql, sqlite3_expanded_sql(statement));
    self.runs_.push_back(run);
    return 0;
}

// The values are the numbers that stand in the expanded text where the statement has a "?".
void Recording::Run::setValues(std::string const& sql, char* expanded) {
    std::unique_ptr<char, decltype(&sqlite3_free)> const owned(expanded, sqlite3_free);
    for (char const character : sql)
        if (character == '?')
            values.at(valueCount++) = static_cast<int>(std::strtol(expanded, &expanded, 10));
        else
            ++expanded;
}

void Recording::redirect(sqlite3* from, sqlite3* to) {
    for (Statement& statement : statements_)
        if (statement.connection == from)
            statement.connection = to;
}

int Recording::doNothing(void* /*context*/, int /*count*/, char** /*values*/, char** /*names*/) {
    return 0;
}

void Recording::replay(RowCallback callback, void* context) const {
    std::vector<PreparedStatement> prepared(statements_.size());
    for (Run const& run : runs_) {
        Statement const& statement = statements_[run.statement];
        if (run.valueCount == 0) {
            execute(statement, callback, context);
            continue;
        }
        PreparedStatement& handle = prepared[run.statement];
        if (handle == nullptr)
            handle = prepare(statement);
        sqlite3_reset(handle.get());
        for (std::size_t i = 0; i < run.valueCount; ++i)
            sqlite3_bind_int(handle.get(), static_cast<int>(i) + 1, run.values[i]);
        expectCode(statement.connection, sqlite3_step(handle.get()), SQLITE_DONE, statement.sql);
    }
}

std::string const& serviceQuery(Recording const& serviceList) {
    for (Recording::Statement const& statement : serviceList.statements())
        if (statement.sql.find(" FROM FavoriteItemView ") != std::string::npos)
            return statement.sql;
    throw std::runtime_error("no service query was recorded");
}

}  // namespace benchmarks
