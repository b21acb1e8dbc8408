#include "support/test_database.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

sqlite3* opened(const std::string& file) {
    sqlite3* connection = nullptr;
    if (sqlite3_open_v2(file.c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        sqlite3_close(connection);
        throw std::runtime_error("cannot open " + file);
    }
    return connection;
}

// A statement that somebody forgot to finalize keeps its connection from closing.
void closeForGood(sqlite3*& connection, const char* name) {
    EXPECT_EQ(sqlite3_close(connection), SQLITE_OK) << name << " holds an open statement";
    connection = nullptr;
}

}  // namespace

DatabaseLock::DatabaseLock(const std::string& file, const char* begin) : connection_(opened(file)) {
    if (sqlite3_exec(connection_, begin, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(connection_));
    }
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

    db = nullptr;
    db_zentova = nullptr;
    bisskey.clear();
    sv = ServiceSnapshot();
    m_selectedServiceListId = 0;
    m_svfield.assign(std::begin(srv), std::end(srv));
    m_flfield.assign(std::begin(fl), std::end(fl));
    platform::reset();
    platform::redirectOpen(platform::kChannelDatabasePath, file_);
}

void TestDatabase::TearDown() {
    closeForGood(db, "db");
    closeForGood(db_zentova, "db_zentova");
    database_.reset();
    if (!directory_.empty()) {
        std::filesystem::remove_all(directory_);
    }
}

std::string TestDatabase::rows(const std::string& sql) const {
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> connection(opened(file_),
                                                                        sqlite3_close);
    std::string all;
    const auto append = [](void* context, int count, char** values, char**) {
        std::string& text = *static_cast<std::string*>(context);
        for (int i = 0; i < count; ++i) {
            text += (i > 0 ? "|" : text.empty() ? "" : ";");
            text += values[i] != nullptr ? values[i] : "NULL";
        }
        return 0;
    };
    char* error = nullptr;
    sqlite3_exec(connection.get(), sql.c_str(), append, &all, &error);
    if (error != nullptr) {
        ADD_FAILURE() << sql << ": " << error;
        sqlite3_free(error);
    }
    return all;
}

std::string TestDatabase::joined(const ResultRow& row) {
    std::string text;
    for (std::size_t i = 0; i < row.size(); ++i) {
        text += (i > 0 ? "|" : "") + row[i];
    }
    return text;
}

std::string TestDatabase::joined(const ResultSet& answer) {
    std::string text;
    for (const auto& row : answer) {
        text += (row == answer.front() ? "" : ";") + joined(*row);
    }
    return text;
}

std::string TestDatabase::column(const ResultSet& answer, std::size_t column) {
    std::string text;
    for (const auto& row : answer) {
        text += (row == answer.front() ? "" : ";") + row->at(column);
    }
    return text;
}

std::vector<std::string> TestDatabase::texts(unsigned int level) {
    std::vector<std::string> all;
    for (const auto& message : platform::messages()) {
        if (message.level == level) {
            all.push_back(message.text);
        }
    }
    return all;
}

int TestDatabase::opens() {
    const auto paths = platform::openedPaths();
    return static_cast<int>(std::count(paths.begin(), paths.end(), platform::kChannelDatabasePath));
}
