// Tables, columns, keys and indexes, held against those that this repository's own maker creates.
#include <channel-database/schema.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>

#include "check/rule.h"
#include "database/query.h"

namespace channel_lists {
namespace {

using Names = std::vector<std::string>;

struct Table {
    bool isView = false;
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
    Query kind(connection, "SELECT 1 FROM sqlite_master WHERE type = 'view' AND lower(name) = ?");
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    table.isView = kind.bind(lower).next();
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
            findings.push_back(
                {"missing-index", Severity::Slow, name,
                 "no index begins with " + wanted.columns.at(column),
                 "lists or edits take long, the longer the larger the database",
                 "CREATE INDEX ... ON " + name + " (" + wanted.columns.at(column) + ")"});
        }
    }
}

Finding missingColumn(std::string const& table, std::string const& column) {
    return {"missing-column",
            Severity::Edits,
            table,
            "column " + column + " does not exist",
            "requests that read it give nothing; edits that write it fail",
            "ALTER TABLE " + table + " ADD COLUMN " + column + " ..."};
}

void compare(std::string const& name, Table const& wanted, Findings& findings) {
    Table const table = readTable(db, name);
    if (table.columns.empty()) {
        findings.push_back({"missing-table", Severity::Edits, name, "the table does not exist",
                            "requests that read it give nothing; edits that write it fail",
                            "CREATE TABLE " + name + " ..."});
        return;
    }
    if (table.isView) {
        findings.push_back({"view-for-table", Severity::Edits, name, "is a view, not a table",
                            "lists take long, and edits that write it fail", "make a table of it"});
    }
    for (auto const& [column, spelled] : wanted.columns)
        if (table.columns.count(column) == 0 && !stands(name, column))
            findings.push_back(missingColumn(name, spelled));
    if (!table.isView)
        compareIndexes(name, wanted, table, findings);
}

// What a comparison of names cannot see, for example a column that two tables have.
void checkViews(Findings& findings) {
    dbaccess::initViews(db);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT * FROM FavoriteItemView", -1, &statement, nullptr) !=
        SQLITE_OK) {
        findings.push_back({"service-query", Severity::Edits, "FavoriteItemView",
                            std::string("SQLite refuses the view: ") + sqlite3_errmsg(db),
                            "no list shows a service",
                            "rename the column that two tables have, or add the missing one"});
    }
    sqlite3_finalize(statement);
}

void checkPages(Findings& findings) {
    Query pages(db, "PRAGMA quick_check(20)");
    while (pages.next()) {
        std::istringstream lines(pages.text(0));
        for (std::string line; std::getline(lines, line);)
            if (line != "ok" && line.compare(0, 3, "***") != 0)
                findings.push_back({"damage", Severity::Edits, "file", line,
                                    "lists may end early or hold wrong entries",
                                    "channellist restore BACKUP, or a new scan"});
    }
}

// What is inserted into FavoriteItem without a value, and what stands in the way of the views.
constexpr Rule kSchemaRules[] = {
    {"default", Severity::Edits,
     "SELECT 'FavoriteItem', 'column ' || name || ' is NOT NULL, and has no default'"
     ", 'no favourite can be added'"
     ", 'give the column a default'"
     " FROM pragma_table_info('FavoriteItem') WHERE \"notnull\" AND dflt_value IS NULL AND pk = 0"
     " AND lower(name) NOT IN ('serviceid', 'channelnum', 'favoriteid', 'originalfavoriteid')"},
    {"default", Severity::Edits,
     "SELECT 'FavoriteItem', 'the default of isDeleted is ' || ifnull(dflt_value, 'NULL') || ', "
     "not 0'"
     ", 'every added favourite is hidden at once'"
     ", 'give the column the default 0'"
     " FROM pragma_table_info('FavoriteItem') WHERE lower(name) = 'isdeleted'"
     " AND ifnull(trim(dflt_value, ' ()'), '') <> '0'"},
    {"default", Severity::Seen,
     "SELECT 'FavoriteItem', 'the default of ' || name || ' is ' || ifnull(dflt_value, 'NULL')"
     " || ', not -1'"
     ", 'added favourites do not follow the flag of their service'"
     ", 'give the column the default -1'"
     " FROM pragma_table_info('FavoriteItem') WHERE lower(name) IN ('visible', 'selectable')"
     " AND ifnull(trim(dflt_value, ' ()'), '') <> '-1'"},
    {"reserved-name", Severity::Seen,
     "SELECT name, 'is a ' || type || ' of the database, and a name that the library takes'"
     ", 'the library reads its own view of this name; other programs may read the other'"
     ", 'ALTER TABLE ' || name || ' RENAME TO ...'"
     " FROM sqlite_master WHERE lower(name) IN ('uriview', 'favoriteitemview')"},
    {"lcn-index", Severity::Seen,
     "SELECT list.name, 'is an index on Lcn (ServiceId, ' || x.name || ')'"
     ", 'another row becomes the first of a service, and its channel number another one'"
     ", 'DROP INDEX ' || list.name"
     " FROM pragma_index_list('Lcn') list JOIN pragma_index_xinfo(list.name) f ON f.seqno = 0"
     " AND lower(f.name) = 'serviceid' JOIN pragma_index_xinfo(list.name) x ON x.seqno = 1"
     " AND x.key"},
};

}  // namespace

void checkSchema(Findings& findings) {
    examine(
        "damage", findings, [&] { checkPages(findings); });
    examine("missing-table", findings, [&] {
        for (auto const& [name, table] : expectedTables())
            compare(name, table, findings);
    });
    applyAll(kSchemaRules, findings);
    checkViews(findings);
}

}  // namespace channel_lists
