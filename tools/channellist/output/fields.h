// What a command tells of its rows: each field is a column of the table and a key of the JSON.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "output/print_rows.h"
#include "output/text_table.h"
#include "text/json_text.h"

namespace tool {

// Words with commas between them, numbers, "yes" or nothing.
std::string textOf(Json const& value);

template <typename Row>
struct Field {
    char const* key;
    Column column;
    std::function<Json(Row const&)> value;
    bool isUsual = true;  // a column where --columns chooses none
    std::string (*text)(Json const&) = textOf;
};

// The places in `keys` that a text of "--columns" names, in its order; "all" names each. Throws
// Failure for another word.
std::vector<std::size_t> chosenKeys(std::vector<std::string> const& keys,
                                    std::string const& columns);
std::string columnsHelp(std::vector<std::string> const& keys);

template <typename Row>
std::vector<std::string> keysOf(std::vector<Field<Row>> const& fields) {
    std::vector<std::string> keys;
    keys.reserve(fields.size());
    for (Field<Row> const& field : fields)
        keys.emplace_back(field.key);
    return keys;
}

// The columns that a table has without --columns.
template <typename Row>
std::vector<Column> usualColumns(std::vector<Field<Row>> const& fields) {
    std::vector<Column> columns;
    for (Field<Row> const& field : fields)
        if (field.isUsual)
            columns.push_back(field.column);
    return columns;
}

// Prints the rows as a table of the chosen columns, or as JSON objects of the chosen keys, without
// a choice of all.
template <typename Row>
void printFields(std::vector<Field<Row>> const& fields, std::vector<Row> const& rows,
                 std::string const& columns, bool json, Style (*style)(Row const&)) {
    std::vector<Field<Row>> shown;
    if (columns.empty()) {
        for (Field<Row> const& field : fields)
            if (json || field.isUsual)
                shown.push_back(field);
    } else {
        for (std::size_t const place : chosenKeys(keysOf(fields), columns)) {
            shown.push_back(fields[place]);
            shown.back().isUsual = true;
        }
    }
    if (json) {
        Json list = Json::array();
        for (Row const& row : rows) {
            Json object = Json::object();
            for (Field<Row> const& field : shown)
                object[field.key] = field.value(row);
            list.push_back(std::move(object));
        }
        printJson(list);
        return;
    }
    TextTable table(usualColumns(shown));
    for (Row const& row : rows) {
        std::vector<Cell> cells;
        cells.reserve(shown.size());
        for (Field<Row> const& field : shown)
            cells.emplace_back(field.text(field.value(row)));
        table.add(std::move(cells), style(row));
    }
    table.show();
}

}  // namespace tool
