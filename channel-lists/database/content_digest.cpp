#include "database/content_digest.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "database/connection.h"
#include "database/query.h"

namespace channel_lists {
namespace {

// 64 bits of FNV-1a.
class Digest {
  public:
    // With its length, so that values do not run into each other.
    void add(std::string_view value) {
        mix(std::to_string(value.size()) + ":");
        mix(value);
    }
    std::string text() const { return std::to_string(state_); }

  private:
    void mix(std::string_view bytes) {
        for (char const byte : bytes)
            state_ = (state_ ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    }

    std::uint64_t state_ = 14695981039346656037U;
};

// In whatever order they are stored.
void addRows(sqlite3* connection, std::string const& sql, Digest& digest) {
    Query rows(connection, sql);
    std::vector<std::string> sorted;
    while (rows.next()) {
        Digest row;
        for (int column = 0; column < rows.columns(); ++column)
            row.add(rows.text(column));
        sorted.push_back(row.text());
    }
    std::sort(sorted.begin(), sorted.end());
    for (std::string const& row : sorted)
        digest.add(row);
}

}  // namespace

std::string contentDigest(sqlite3* connection) {
    Digest digest;
    std::vector<std::string> selections;
    {
        // quote() tells types apart. What is derived, and what an edit that is taken back leaves,
        // is left out.
        Query columns(connection,
                      "SELECT 'SELECT ' || group_concat('quote(\"' ||"
                      " replace(c.name, '\"', '\"\"') || '\")') || ' FROM main.\"' ||"
                      " replace(t.name, '\"', '\"\"') || '\"'"
                      " FROM main.sqlite_master t, pragma_table_xinfo(t.name) c"
                      " WHERE t.type = 'table' AND t.rootpage > 0"
                      " AND t.name NOT LIKE 'sqlite\\_%' ESCAPE '\\' AND (t.name, c.name) NOT IN"
                      " (VALUES ('FavoriteList', 'UpdateTag'),"
                      " ('FavoriteList', 'MaxChannelNumber'), ('FavoriteItem', 'Id'))"
                      " GROUP BY t.name ORDER BY t.name");
        while (columns.next())
            selections.push_back(columns.text(0));
    }
    addRows(connection,
            "SELECT type, name, sql FROM main.sqlite_master"
            " WHERE name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY 1, 2",
            digest);
    for (std::string const& sql : selections)
        addRows(connection, sql, digest);
    return digest.text();
}

std::string fileDigest(std::string const& path) {
    struct Connection {
        ~Connection() { sqlite3_close(handle); }
        sqlite3* handle = nullptr;
    } file, copy;
    openConnection(path, SQLITE_OPEN_READONLY, file.handle);
    copy.handle = copyInMemory(file.handle);  // of one moment
    return contentDigest(copy.handle);
}

}  // namespace channel_lists
