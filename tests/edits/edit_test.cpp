#include "edits/edit_test.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <sstream>

namespace {

bool startsWith(std::string const& text, std::string const& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

}  // namespace

void EditTest::SetUp() {
    TestDatabase::SetUp();
    database().list("tamun.sl2.servicelist$all", 1).uuid("all");
    database().list("servicelist://tamun.dvbc", 2).uuid("cable");
    for (int list = 6; list <= 9; ++list) {
        std::string const index = std::to_string(list - 5);
        database().list("User.tvFAV" + index, list).uuid("fav" + index);
    }
    std::map<int, channel_database::Service> services;
    for (int pid = 10; pid <= 15; ++pid) {
        services.emplace(pid, database().dvbc("S" + std::to_string(pid), pid));
        put(1, pid, pid - 9);
    }
    constexpr int kItems[][3] = {{2, 10, 1}, {2, 11, 2}, {6, 10, 1}, {6, 12, 5}, {6, 14, 9},
                                 {7, 10, 1}, {7, 11, 2}, {7, 12, 3}, {8, 12, 4}};
    for (auto const& [list, service, number] : kItems) {
        put(list, service, number);
        if (list >= 6)
            services.at(service).favTag(list - 5);
    }
    ASSERT_EQ(sqlite3_open_v2(file().c_str(), &db, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
    sqlite3_exec(db, "PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    sqlite3_trace_v2(db, SQLITE_TRACE_STMT, onStatement, this);
}

void EditTest::TearDown() {
    expectAtRest();
    EXPECT_FALSE(action_.second) << "never ran: " << action_.first;
    for (auto const& message : platform::state.messages) {
        bool const isBare =
            message.level == 4000 && (message.format == "%d " || message.format == "].");
        EXPECT_TRUE(isBare || !startsWith(message.text, "MALFORMED")) << message.text;
        EXPECT_EQ(message.module, 0xdaU) << message.text;
    }
    TestDatabase::TearDown();
}

void EditTest::startAnew() {
    TearDown();
    SetUp();
}

int EditTest::request(Texts const& arguments) {
    int const syncs = platform::state.commandCount;
    int const result = watched([&] { return dbaccess::onServiceListEdit(arguments); });
    EXPECT_EQ(platform::state.commandCount, syncs + (result >= 0 ? 1 : 0));
    return result;
}

int EditTest::edit(std::string const& arguments) {
    std::istringstream words(arguments);
    return request({std::istream_iterator<std::string>(words), {}});
}

int EditTest::watched(std::function<int()> const& call) {
    before_ = everything();
    statements_.clear();
    platform::state.messages.clear();
    int const result = call();
    expectAtRest();
    return result;
}

void EditTest::expectAtRest() {
    ASSERT_EQ(pthread_mutex_trylock(&svresult_mutex), 0) << "the mutex is still held";
    pthread_mutex_unlock(&svresult_mutex);
    EXPECT_TRUE(db == nullptr || sqlite3_get_autocommit(db)) << "a transaction is open";
    EXPECT_TRUE(db == nullptr || sqlite3_next_stmt(db, nullptr) == nullptr)
        << "a statement is left";
}

std::string EditTest::changes() {
    auto after = everything();
    std::string all;
    for (auto const& [name, row] : before_) {
        auto const now = after.extract(name);
        if (now.empty()) {
            all += "; -" + name;
            continue;
        }
        for (std::size_t i = 0; i < row.size(); ++i) {
            auto const& [column, value] = row[i];
            if (std::string const& newValue = now.mapped()[i].second; newValue != value)
                all += "; " + name + ": " + column + " " + value + ">" + newValue;
        }
    }
    for (auto const& [name, row] : after) {
        all += "; +" + name;
        for (std::size_t i = 1; i < row.size(); ++i)
            all += "|" + row[i].second;
    }
    return all.substr(all.empty() ? 0 : 2);
}

std::map<std::string, EditTest::Row> EditTest::everything() {
    std::map<std::string, Row> all;
    for (auto const& tables :
         database().rows("SELECT name FROM sqlite_master WHERE type = 'table'")) {
        std::string const table = tables[0];
        auto const columns = database().rows("SELECT name FROM pragma_table_info('" + table + "')");
        std::string const shortName = table.substr(startsWith(table, "Favorite") ? 8 : 0);
        for (auto const& values : database().rows("SELECT rowid, * FROM " + table)) {
            Row& row = all[shortName + " " + values[0]];
            for (std::size_t i = 0; i < columns.size(); ++i)
                row.emplace_back(columns[i][0], values[i + 1]);
        }
    }
    return all;
}

void EditTest::when(std::string const& beginning, std::function<void()> action) {
    action_ = {beginning, std::move(action)};
}

int EditTest::onStatement(unsigned int, void* test, void* statement, void* text) {
    auto& self = *static_cast<EditTest*>(test);
    if (std::strncmp(static_cast<char const*>(text), "--", 2) == 0)
        return 0;  // a trigger's
    std::unique_ptr<char, decltype(&sqlite3_free)> const sql(
        sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement)), sqlite3_free);
    self.statements_ += std::string(sql.get()) + "\n";
    if (self.action_.second && startsWith(sql.get(), self.action_.first))
        std::exchange(self.action_.second, nullptr)();
    return 0;
}

void EditTest::forbid(std::string const& write, std::string const& condition) {
    change("CREATE TRIGGER forbidden BEFORE " + write + " FOR EACH ROW WHEN " + condition +
           " BEGIN SELECT RAISE(ABORT, 'forbidden'); END");
}

void EditTest::put(int list, int service, int number) {
    database().put(list, service, number).set("Id", list * 100 + service);
}

void EditTest::ott(std::string const& rows) {
    channel_database::ChannelDatabase database(ottFile());
    database.run("DROP TABLE IF EXISTS SQL_OTTFavChannels");
    database.run("CREATE TABLE SQL_OTTFavChannels (favName TEXT, favIndex)");
    database.run("INSERT INTO SQL_OTTFavChannels VALUES " + rows);
}
