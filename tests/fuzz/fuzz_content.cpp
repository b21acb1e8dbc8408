// Fuzz target: the content of the channel database. Each line of the input spoils something:
//
//     Service.Type=tHello     a column in every row; t text, b blob, i integer, r real, n null
//     Service.Type:3=n        in one row
//     !Service.Type           drops the column
//     !Service                drops the table
//     @100=bytes              writes bytes into the file
//     #5000                   cuts the file off
//
// A name that is no column's counts as that of some column. An input that begins as an SQLite file
// does is taken for the whole file. The last byte chooses the request that meets the content.
#include <channellist-access/db_access.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>

#include "fuzz_database.h"

namespace {

std::size_t number(std::string const& text) {
    return static_cast<std::size_t>(std::strtoull(text.c_str(), nullptr, 10));
}

std::string columnNamed(std::string const& name) {
    auto const& all = fuzz::columns();
    bool const isKnown = std::find(all.begin(), all.end(), name) != all.end();
    return isKnown ? name : all[std::hash<std::string>()(name) % all.size()];
}

void bind(sqlite3_stmt* statement, std::string const& value) {
    std::string const text = value.empty() ? "" : value.substr(1);
    int const size = static_cast<int>(text.size());
    switch (value.empty() ? 'n' : value[0]) {
        case 'n':
            break;
        case 'i':
            sqlite3_bind_int64(statement, 1, std::strtoll(text.c_str(), nullptr, 10));
            break;
        case 'r':
            sqlite3_bind_double(statement, 1, std::strtod(text.c_str(), nullptr));
            break;
        case 'b':
            sqlite3_bind_blob(statement, 1, text.data(), size, SQLITE_TRANSIENT);
            break;
        default:
            sqlite3_bind_text(statement, 1, text.data(), size, SQLITE_TRANSIENT);
    }
}

void spoilColumn(std::string const& target, std::string const& value) {
    std::size_t const colon = target.find(':');
    std::string const column = columnNamed(target.substr(0, colon));
    std::size_t const dot = column.find('.');
    std::string sql =
        "UPDATE OR IGNORE " + column.substr(0, dot) + " SET " + column.substr(dot + 1) + " = ?";
    if (colon != std::string::npos)
        sql += " WHERE rowid = " + std::to_string(number(target.substr(colon + 1)) % 80);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK) {
        bind(statement, value);
        sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
}

void drop(std::string const& target) {
    std::string const column = columnNamed(target);
    std::size_t const dot = column.find('.');
    std::string const table = column.substr(0, dot);
    std::string const sql = target == column
                                ? "ALTER TABLE " + table + " DROP COLUMN " + column.substr(dot + 1)
                                : "DROP TABLE IF EXISTS " + table;
    sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
}

// What can be spoilt through SQL, and the bytes of the file before that.
void spoil(std::vector<std::string> const& orders) {
    std::string image = fuzz::databaseImage();
    for (std::string const& order : orders) {
        if (order[0] == '#')
            image.resize(std::min(image.size(), number(order.substr(1))));
        if (order[0] != '@')
            continue;
        std::size_t const equals = std::min(order.find('='), order.size() - 1);
        std::size_t const at = number(order.substr(1)) % (image.size() + 1);
        std::string const bytes = order.substr(equals + 1, image.size() - at);
        image.replace(at, bytes.size(), bytes);
    }
    fuzz::openDatabase(image);
    for (std::string const& order : orders) {
        std::size_t const equals = order.find('=');
        if (order[0] == '!')
            drop(order.substr(1));
        else if (order[0] != '@' && order[0] != '#' && equals != std::string::npos)
            spoilColumn(order.substr(0, equals), order.substr(equals + 1));
    }
}

void edit(std::vector<std::string> arguments) { dbaccess::onServiceListEdit(std::move(arguments)); }

constexpr void (*kRequests[])() = {
    [] { dbaccess::select_Folders(); },
    [] { dbaccess::get_dbservices("all"); },
    [] { dbaccess::get_dbservices("list-6"); },
    [] {
        std::string uuid;
        dbaccess::getAstraAnchorService(uuid);
    },
    [] {
        int flag = 0;
        dbaccess::checkAstraScrambleService(flag);
    },
    [] { dbaccess::getBissKeyFromService("service-1"); },
    [] {
        edit({"fav1", "0", "1", "3", "1", "2", "4", "0", "3", "77"});
    },
    [] {
        edit({"all", "61", "1", "3", "62", "2", "4"});
    },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const input(reinterpret_cast<char const*>(data), size);
    if (input.rfind("SQLite format 3", 0) == 0) {
        fuzz::openDatabase(input);
    } else {
        std::vector<std::string> orders = fuzz::lines(input);
        orders.erase(std::remove(orders.begin(), orders.end(), ""), orders.end());
        spoil(orders);
    }
    kRequests[size == 0 ? 0 : data[size - 1] % std::size(kRequests)]();
    fuzz::expectLibraryAtRest();
    return 0;
}
