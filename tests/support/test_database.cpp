#include "support/test_database.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

// A statement that somebody forgot to finalize keeps its connection from closing.
void closeForGood(sqlite3*& connection, char const* name) {
    EXPECT_EQ(sqlite3_close(connection), SQLITE_OK) << name << " holds an open statement";
    connection = nullptr;
}

}  // namespace

DatabaseLock::DatabaseLock(std::string const& file, char const* begin) {
    sqlite3_open_v2(file.c_str(), &connection_, SQLITE_OPEN_READWRITE, nullptr);
    if (sqlite3_exec(connection_, begin, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(connection_));
}

void DatabaseLock::release() {
    sqlite3_close(connection_);  // rolls back
    connection_ = nullptr;
}

void TestDatabase::SetUp() {
    std::string name = (std::filesystem::temp_directory_path() / "channellist-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
    file_ = directory_ + "/servicelist.db";
    database_ = std::make_unique<channel_database::ChannelDatabase>(file_);

    setenv("HOME", directory_.c_str(), 1);  // where the library looks for the OTT database

    db = nullptr;
    db_zentova = nullptr;
    bisskey.clear();
    sv = ServiceSnapshot();
    m_selectedServiceListId = 0;
    m_svfield.assign(std::begin(srv), std::end(srv));
    m_flfield.assign(std::begin(fl), std::end(fl));
    platform::state = {};
    platform::state.channelDatabase = file_;
}

void TestDatabase::TearDown() {
    EXPECT_EQ(pthread_mutex_trylock(&svresult_mutex), 0) << "the mutex is still held";
    pthread_mutex_unlock(&svresult_mutex);
    closeForGood(db, "db");
    closeForGood(db_zentova, "db_zentova");
    database_.reset();
    if (!directory_.empty())
        std::filesystem::remove_all(directory_);
}

std::string TestDatabase::rows(std::string const& sql) {
    ResultSet all;
    for (auto const& row : database_->rows(sql))
        all.push_back(boost::shared_ptr<ResultRow>(new ResultRow(row)));
    return joined(all);
}

std::string TestDatabase::joined(ResultRow const& row, char const* separator) {
    std::string text;
    for (std::string const& cell : row)
        text += (&cell == &row.front() ? "" : separator) + cell;
    return text;
}

std::string TestDatabase::joined(ResultSet const& answer) {
    ResultRow lines;
    for (auto const& row : answer)
        lines.push_back(joined(*row));
    return joined(lines, ";");
}

std::string TestDatabase::column(ResultSet const& answer, std::size_t column) {
    ResultRow cells;
    for (auto const& row : answer)
        cells.push_back(row->at(column));
    return joined(cells, ";");
}

std::vector<std::string> TestDatabase::repeated(int count, std::vector<std::string> const& some) {
    std::vector<std::string> all;
    while (--count >= 0)
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

void TestDatabase::closeLibrary() {
    closeForGood(db, "db");
    platform::state.messages.clear();
}

std::vector<std::string> TestDatabase::texts(unsigned int level) {
    std::vector<std::string> all;
    for (auto const& message : platform::state.messages)
        if (message.level == level)
            all.push_back(message.text);
    return all;
}

int TestDatabase::opens() {
    auto const& paths = platform::state.openedPaths;
    return static_cast<int>(std::count(paths.begin(), paths.end(), platform::kChannelDatabasePath));
}
