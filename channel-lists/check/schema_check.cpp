// Tables, columns, keys and indexes, held against those that this repository's own maker creates.
#include <channel-database/schema.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <map>
#include <memory>

#include "check/rule.h"
#include "database/query.h"

namespace channel_lists {
namespace {

using Names = std::vector<std::string>;

struct Table {
    bool isView = false;
    std::map<std::string, std::string> columns;  // lower case, and as the table spells them
    std::map<std::string, std::string> types;    // by the columns, as declared
    std::map<std::string, std::string> defaults;
    Names keys;     // columns that begin the primary key
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
    Query columns(connection,
                  "SELECT lower(name), name, pk, upper(type), dflt_value FROM "
                  "pragma_table_xinfo(?) WHERE hidden <> 1");
    columns.bind(name);
    while (columns.next()) {
        table.columns[columns.text(0)] = columns.text(1);
        table.types[columns.text(0)] = columns.text(3);
        if (!columns.isNull(4))
            table.defaults[columns.text(0)] = " DEFAULT " + columns.text(4);
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

struct Expected {
    std::map<std::string, Table> tables;
    std::map<std::string, std::string> tableSql;  // with all indexes
    std::map<std::string, std::string> indexSql;  // "FavoriteItem.serviceid", by the first column
};

Expected expectedSchema() {
    sqlite3* connection = nullptr;
    sqlite3_open(":memory:", &connection);
    std::unique_ptr<sqlite3, Closer> const owner(connection);
    channel_database::createSchema(connection);
    Expected expected;
    Query objects(connection,
                  "SELECT type, tbl_name, sql, (SELECT lower(name) FROM pragma_index_info(m.name)"
                  " WHERE seqno = 0) FROM sqlite_master m WHERE sql NOT NULL ORDER BY type DESC");
    while (objects.next()) {
        std::string const table = objects.text(1), sql = objects.text(2);
        if (objects.text(0) == "table")
            expected.tables[table] = readTable(connection, table);
        else
            expected.indexSql[table + "." + objects.text(3)] = sql;
        expected.tableSql[table] += (expected.tableSql[table].empty() ? "" : "; ") + sql;
    }
    return expected;
}

bool isText(std::string const& type) {
    return type.find("INT") == std::string::npos &&
           (type.find("CHAR") != std::string::npos || type.find("TEXT") != std::string::npos ||
            type.find("CLOB") != std::string::npos);
}

// Numbers that are kept as texts sort as texts do, 10 before 2.
void compareTypes(std::string const& name, Table const& wanted, Table const& table,
                  Findings& findings) {
    for (auto const& [column, type] : wanted.types) {
        auto const found = table.types.find(column);
        if (type != "INTEGER" || found == table.types.end() || !isText(found->second))
            continue;
        findings.push_back(
            {"column-type", Severity::Seen, name,
             "column " + wanted.columns.at(column) + " is " + found->second + ", and holds numbers",
             "numbers sort as texts, 10 before 2, and are told apart from others",
             decision("make the table anew, with the column INTEGER")});
    }
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

std::string newIndex(std::string const& table, std::string const& column) {
    std::string sql = "CREATE INDEX ";
    sql.append(table).append("By").append(column);
    return sql.append(" ON ").append(table).append(" (").append(column).append(")");
}

void compareIndexes(std::string const& name, Expected const& expected, Table const& table,
                    Findings& findings) {
    Table const& wanted = expected.tables.at(name);
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
            std::string const& spelled = wanted.columns.at(column);
            auto const known = expected.indexSql.find(name + "." + column);
            findings.push_back(
                {"missing-index", Severity::Slow, name, "no index begins with " + spelled,
                 "lists or edits take long, the longer the larger the database",
                 statements(known != expected.indexSql.end() ? known->second
                                                             : newIndex(name, spelled))});
        }
    }
}

Finding missingColumn(std::string const& table, Table const& wanted, std::string const& column) {
    auto const value = wanted.defaults.find(column);
    return {"missing-column",
            Severity::Edits,
            table,
            "column " + wanted.columns.at(column) + " does not exist",
            "requests that read it give nothing; edits that write it fail",
            statements("ALTER TABLE " + table + " ADD COLUMN " + wanted.columns.at(column) + " " +
                       wanted.types.at(column) +
                       (value == wanted.defaults.end() ? "" : value->second))};
}

void compare(std::string const& name, Expected const& expected, Findings& findings) {
    Table const& wanted = expected.tables.at(name);
    Table const table = readTable(db, name);
    if (table.columns.empty()) {
        findings.push_back({"missing-table", Severity::Edits, name, "the table does not exist",
                            "requests that read it give nothing; edits that write it fail",
                            statements(expected.tableSql.at(name))});
        return;
    }
    if (table.isView) {
        findings.push_back({"view-for-table", Severity::Edits, name, "is a view, not a table",
                            "lists take long, and edits that write it fail",
                            decision("make a table of it")});
    }
    for (auto const& each : wanted.columns) {
        std::string const& column = each.first;
        if (table.columns.count(column) == 0 && !stands(name, column))
            findings.push_back(missingColumn(name, wanted, column));
    }
    if (!table.isView) {
        compareTypes(name, wanted, table, findings);
        compareIndexes(name, expected, table, findings);
    }
}

// What is inserted into FavoriteItem without a value, and what stands in the way of the views.
constexpr Rule kSchemaRules[] = {
    {"default", Severity::Edits, Mend::Decision,
     "SELECT 'FavoriteItem', 'column ' || name || ' is NOT NULL, and has no default'"
     ", 'no favourite can be added'"
     ", 'give the column a default'"
     " FROM pragma_table_info('FavoriteItem') WHERE \"notnull\" AND dflt_value IS NULL AND pk = 0"
     " AND lower(name) NOT IN ('serviceid', 'channelnum', 'favoriteid', 'originalfavoriteid')"},
    {"default", Severity::Edits, Mend::Decision,
     "SELECT 'FavoriteItem', 'the default of isDeleted is ' || ifnull(dflt_value, 'NULL') || ', "
     "not 0'"
     ", 'every added favourite is hidden at once'"
     ", 'give the column the default 0'"
     " FROM pragma_table_info('FavoriteItem') WHERE lower(name) = 'isdeleted'"
     " AND ifnull(trim(dflt_value, ' ()'), '') <> '0'"},
    {"default", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteItem', 'the default of ' || name || ' is ' || ifnull(dflt_value, 'NULL')"
     " || ', not -1'"
     ", 'added favourites do not follow the flag of their service'"
     ", 'give the column the default -1'"
     " FROM pragma_table_info('FavoriteItem') WHERE lower(name) IN ('visible', 'selectable')"
     " AND ifnull(trim(dflt_value, ' ()'), '') <> '-1'"},
    {"reserved-name", Severity::Seen, Mend::Decision,
     "SELECT name, 'is a ' || type || ' of the database, and a name that the library takes'"
     ", 'the library reads its own view of this name; other programs may read the other'"
     ", 'ALTER TABLE ' || name || ' RENAME TO ...'"
     " FROM sqlite_master WHERE lower(name) IN ('uriview', 'favoriteitemview')"},
    {"lcn-index", Severity::Seen, Mend::Statement,
     "SELECT list.name, 'is an index on Lcn (ServiceId, ' || x.name || ')'"
     ", 'another row becomes the first of a service, and its channel number another one'"
     ", 'DROP INDEX \"' || list.name || '\"; CREATE INDEX IF NOT EXISTS LcnByService ON Lcn "
     "(ServiceId)'"
     " FROM pragma_index_list('Lcn') list JOIN pragma_index_xinfo(list.name) f ON f.seqno = 0"
     " AND lower(f.name) = 'serviceid' JOIN pragma_index_xinfo(list.name) x ON x.seqno = 1"
     " AND x.key"},
};

}  // namespace

void checkSchema(Findings& findings) {
    examine("missing-table", findings, [&] {
        Expected const expected = expectedSchema();
        for (auto const& each : expected.tables)
            compare(each.first, expected, findings);
    });
    applyAll(kSchemaRules, findings);
}

// What a comparison of names cannot see, for example a column that two tables have.
void checkViews(Findings& findings) {
    dbaccess::initViews(db);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT * FROM FavoriteItemView", -1, &statement, nullptr) !=
        SQLITE_OK) {
        findings.push_back(
            {"service-query", Severity::Edits, "FavoriteItemView",
             std::string("SQLite refuses the view: ") + sqlite3_errmsg(db),
             "no list shows a service",
             decision("rename the column that two tables have, or add the missing one")});
    }
    sqlite3_finalize(statement);
}

}  // namespace channel_lists
