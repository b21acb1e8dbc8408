// Damage to the file, and what can be read of it all the same.
#include <channellist-access/db_access.h>

#include <map>
#include <sstream>

#include "check/damage.h"
#include "check/finding.h"
#include "database/query.h"

namespace channel_lists {
namespace {

constexpr int kMostLines = 200;
constexpr int kMostDamage = 20;

bool contains(std::string const& text, char const* part) {
    return text.find(part) != std::string::npos;
}

// Lines that tell of no damage: space that nothing uses, and values that a constraint forbids or
// that are of another type than their column.
bool isHarmless(std::string const& line) {
    return line == "ok" || line.compare(0, 3, "***") == 0 || contains(line, "is never used") ||
           contains(line, " value in ") || contains(line, "CHECK constraint failed");
}

// "row 5 missing from index X", "wrong # of entries in index X"; "" for any other line.
std::string staleIndex(std::string const& line) {
    auto const at = line.find(" index ");
    bool const isStale =
        contains(line, "missing from index") || contains(line, "of entries in index");
    return isStale && at != std::string::npos ? line.substr(at + 7) : std::string();
}

// Tables whose indexes compare by rules of their owner's own: their order cannot be told.
std::vector<std::string> tablesToLookAt() {
    Query names(
        db,
        "SELECT name FROM sqlite_master m WHERE type = 'table' AND NOT EXISTS (SELECT 1"
        " FROM pragma_index_list(m.name) l, pragma_index_xinfo(l.name) x WHERE upper(x.coll)"
        " NOT IN ('BINARY', 'NOCASE', 'RTRIM')) AND sql NOT LIKE 'CREATE VIRTUAL%'");
    std::vector<std::string> tables;
    while (names.next())
        tables.push_back(names.text(0));
    return tables;
}

// The look ends at a page that is none: what it said before counts, and why it ended, too.
std::vector<std::string> linesOf(std::string const& pragma) {
    std::vector<std::string> found;
    try {
        Query pages(db, pragma);
        while (pages.next()) {
            std::istringstream lines(pages.text(0));
            for (std::string line; std::getline(lines, line);)
                if (!isHarmless(line))
                    found.push_back(line);
        }
    } catch (Failure const& failure) {
        if (TimeLimit::isReached())
            throw;
        found.push_back(failure.what());
    }
    return found;
}

// Whether the owner compares by rules of their own; a schema that cannot be read has none.
bool hasForeignOrder(std::size_t soundTables) {
    return queryNumber(db,
                       "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND sql NOT LIKE"
                       " 'CREATE VIRTUAL%'") != static_cast<std::int64_t>(soundTables);
}

// The whole file in one go; the sound tables of one with foreign rules one by one.
std::vector<std::string> damagedLines() {
    std::vector<std::string> lines;
    try {
        std::vector<std::string> const tables = tablesToLookAt();
        if (hasForeignOrder(tables.size())) {
            for (std::string const& table : tables)
                for (std::string const& line : linesOf("PRAGMA integrity_check('" + table + "')"))
                    lines.push_back(line);
            return lines;
        }
    } catch (Failure const&) {  // which the whole look explains
    }
    return linesOf("PRAGMA integrity_check(" + std::to_string(kMostLines) + ")");
}

}  // namespace

void checkPages(Findings& findings) {
    examine(
        "damage", findings,
        [&] {
            std::map<std::string, int> stale;
            int damaged = 0;
            for (std::string const& line : damagedLines()) {
                std::string const index = staleIndex(line);
                if (!index.empty())
                    ++stale[index];
                else if (++damaged <= kMostDamage)
                    findings.push_back({"damage", Severity::Edits, "file", line,
                                        "lists may end early or hold wrong entries",
                                        decision(stepsFromDamage() + "; " + stillReadable(db))});
            }
            for (auto const& [index, lines] : stale)
                findings.push_back({"stale-index", Severity::Edits, index,
                                    "the index disagrees with its table in " +
                                        std::to_string(lines) + (lines == 1 ? " place" : " places"),
                                    "lists lack entries that are there, or edits reach others",
                                    statements("REINDEX \"" + index + "\"")});
        });
}

std::string stepsFromDamage() {
    return "keep a copy of the file; \"channellist restore BACKUP\" where there is one; else "
           "\"sqlite3 FILE .recover | sqlite3 NEW\", \"channellist check --db NEW\" and "
           "\"channellist restore NEW\", or \"channellist import\" of the last export";
}

std::string stillReadable(sqlite3* connection) {
    std::string counts;
    try {
        std::vector<std::string> tables;
        Query names(connection,
                    "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
        try {
            while (names.next())
                tables.push_back(names.text(0));
        } catch (Failure const&) {  // the rest of the schema is lost
        }
        for (std::string const& table : tables) {
            long rows = 0;
            bool isWhole = false;
            try {
                Query each(connection, "SELECT * FROM \"" + table + "\" NOT INDEXED");
                for (; each.next(); ++rows) {
                }
                isWhole = true;
            } catch (Failure const&) {
            }
            counts += (counts.empty() ? "" : ", ") + table + " " + std::to_string(rows) +
                      (isWhole ? "" : " and no more");
        }
    } catch (Failure const&) {
    }
    if (counts.empty())
        return "no table can be read";
    return "rows that can be read: " + counts;
}

Finding damagedFile(std::string const& path, std::string const& why) {
    sqlite3* connection = nullptr;
    // Not as untrusted as usual: SQLite reads beyond a wrong length only for who may mend the
    // schema.
    sqlite3_open_v2(path.c_str(), &connection, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_exec(connection, "PRAGMA writable_schema = ON", nullptr, nullptr, nullptr);
    TimeLimit::watch(connection);
    std::string const readable = stillReadable(connection);
    sqlite3_close(connection);
    return {"damage",
            Severity::Edits,
            "file",
            why + "; " + readable,
            "no list can be shown or edited",
            decision(stepsFromDamage())};
}

}  // namespace channel_lists
