#include "plain_copy.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace benchmarks {

PlainCopy::PlainCopy(std::filesystem::path const& file, Recording const& serviceList)
    : database_(std::make_unique<SQLite::Database>(file, SQLite::OPEN_READWRITE)),
      query_(serviceQuery(serviceList)) {
    for (Recording::Statement const& statement : serviceList.statements()) {
        if (statement.sql == query_)
            break;
        before_.push_back(statement.sql);
    }
}

PlainCopy::~PlainCopy() = default;

std::vector<std::vector<std::string>> PlainCopy::read() {
    for (std::string const& sql : before_)
        database_->exec(sql);
    std::vector<std::vector<std::string>> rows;
    SQLite::Statement query(*database_, query_);
    int const columns = query.getColumnCount();
    while (query.executeStep()) {
        std::vector<std::string>& row = rows.emplace_back();
        row.reserve(static_cast<std::size_t>(columns));
        for (int column = 0; column < columns; ++column)
            row.push_back(query.getColumn(column).getString());
    }
    database_->exec("COMMIT TRANSACTION");
    return rows;
}

}  // namespace benchmarks
