// Tables, columns, keys and indexes, held against those that this repository's own maker creates.
#include <channel-database/schema.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <map>
#include <memory>

#include "check/finding.h"
#include "database/query.h"

namespace tool {
namespace {

using Names = std::vector<std::string>;

struct Table {
    std::map<std::string, std::string> columns;  // lower case, and as the table spells them
    Names keys;                                  // columns that begin the primary key
    Names indexed;  // columns that begin an index, their collation behind a blank
};

struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};

// Columns that the library's statements also find in another table.
std::map<std::string, Names> const kOtherPlaces = {
    {"Tuner.frontend",
     {"DvbTTuner", "DvbT2Tuner", "DvbCTuner", "DvbC2Tuner", "DvbSTuner", "DvbS2Tuner"}},
    {"DvbService.networkurl", {"DvbIpTuner"}},
    {"DvbSTuner.satellite", {"Tuner"}},
    {"DvbS2Tuner.satellite", {"Tuner"}},
};

// Nothing for a table that does not exist.
Table readTable(sqlite3* connection, std::string const& name) {
    Table table;
    Query columns(connection, "SELECT lower(name), name, pk FROM pragma_table_info(?)");
    columns.bind(name);
    while (columns.next()) {
        table.columns[columns.text(0)] = columns.text(1);
        if (columns.number(2) == 1)
            table.keys.push_back(columns.text(0));
    }
    Query indexes(connection,
                  "SELECT lower(x.name) || ' ' || x.coll FROM pragma_index_list(?) AS list,"
                  " pragma_index_xinfo(list.name) AS x WHERE x.seqno = 0");
    indexes.bind(name);
    while (indexes.next())
        table.indexed.push_back(indexes.text(0));
    return table;
}

std::map<std::string, Table> expectedTables() {
    sqlite3* connection = nullptr;
    sqlite3_open(":memory:", &connection);
    std::unique_ptr<sqlite3, Closer> const owner(connection);
    channel_database::createSchema(connection);
    std::map<std::string, Table> tables;
    Query names(connection, "SELECT name FROM sqlite_master WHERE type = 'table'");
    while (names.next())
        tables[names.text(0)] = readTable(connection, names.text(0));
    return tables;
}

bool stands(std::string const& table, std::string const& column) {
    auto const places = kOtherPlaces.find(table + "." + column);
    return places != kOtherPlaces.end() &&
           std::any_of(places->second.begin(), places->second.end(), [&](std::string const& other) {
               return readTable(db, other).columns.count(column) != 0;
           });
}

bool contains(Names const& names, std::string const& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

void compareIndexes(std::string const& name, Table const& wanted, Table const& table,
                    Findings& findings) {
    Names missing;
    for (std::string const& key : wanted.keys)
        if (!contains(table.keys, key) && !contains(table.indexed, key + " BINARY"))
            missing.push_back(key);
    for (std::string const& indexed : wanted.indexed) {
        std::string const column = indexed.substr(0, indexed.find(' '));
        bool const serves = contains(table.indexed, indexed) ||
                            (contains(table.keys, column) && indexed == column + " BINARY");
        if (!serves && !contains(missing, column))
            missing.push_back(column);
    }
    for (std::string const& column : missing) {
        if (table.columns.count(column) != 0) {
            findings.push_back({"missing-index", name,
                                "no index begins with " + wanted.columns.at(column),
                                "lists or edits take long, the longer the larger the database"});
        }
    }
}

void compare(std::string const& name, Table const& wanted, Findings& findings) {
    Table const table = readTable(db, name);
    if (table.columns.empty()) {
        findings.push_back({"missing-table", name, "the table does not exist",
                            "requests that read it give nothing; edits that write it fail"});
        return;
    }
    for (auto const& [column, spelled] : wanted.columns) {
        if (table.columns.count(column) == 0 && !stands(name, column)) {
            findings.push_back({"missing-column", name, "column " + spelled + " does not exist",
                                "requests that read it give nothing; edits that write it fail"});
        }
    }
    compareIndexes(name, wanted, table, findings);
}

// What a comparison of names cannot see, for example a column that two tables have.
void checkViews(Findings& findings) {
    dbaccess::initViews(db);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT * FROM FavoriteItemView", -1, &statement, nullptr) !=
        SQLITE_OK) {
        findings.push_back({"service-query", "FavoriteItemView",
                            std::string("SQLite refuses the view: ") + sqlite3_errmsg(db),
                            "no list shows a service"});
    }
    sqlite3_finalize(statement);
}

void checkPages(Findings& findings) {
    Query pages(db, "PRAGMA quick_check(20)");
    while (pages.next()) {
        if (pages.text(0) != "ok") {
            findings.push_back(
                {"damage", "file", pages.text(0), "lists may end early or hold wrong entries"});
        }
    }
}

}  // namespace

void checkSchema(Findings& findings) {
    examine(
        "damage", findings, [&] { checkPages(findings); });
    examine("missing-table", findings, [&] {
        for (auto const& [name, table] : expectedTables())
            compare(name, table, findings);
    });
    checkViews(findings);
}

}  // namespace tool
