// A channel database of its own for every test, behind the fixed path that the library opens.
#pragma once

#include <channel-database/builder.h>
#include <channellist-access/db_access.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/platform_doubles.h"

/// What the library says of each attempt on a busy database.
constexpr char kTryAgain[] = " database is locked, try again";

/// Holds a lock on the database in a connection of its own until release() or its end.
class DatabaseLock {
  public:
    static constexpr char kExclusive[] = "BEGIN EXCLUSIVE";  // nobody else reads or writes
    static constexpr char kWriter[] = "BEGIN IMMEDIATE";     // nobody else writes
    static constexpr char kReader[] = "BEGIN; SELECT * FROM FavoriteList";  // nobody else commits

    explicit DatabaseLock(std::string const& file, char const* begin = kExclusive);
    ~DatabaseLock() { release(); }
    DatabaseLock(DatabaseLock const&) = delete;
    DatabaseLock& operator=(DatabaseLock const&) = delete;
    void release();

  private:
    sqlite3* connection_ = nullptr;
};

class TestDatabase : public testing::Test {
  protected:
    /// Makes the directory and the empty database, and brings the library's globals and the
    /// platform's doubles into the state of a fresh process.
    void SetUp() override;
    /// Closes the library's connections, which must hold no open statement any more; the mutex
    /// must be free.
    void TearDown() override;

    /// The rows of a query on the builder's connection, "a|b;c|d", NULL as "NULL".
    std::string rows(std::string const& sql);
    /// The cells of an answer of the library, "a|b;c|d".
    static std::string joined(ResultSet const& answer);
    static std::string joined(ResultRow const& row, char const* separator = "|");
    /// Column `column` of every row of an answer, "a;b".
    static std::string column(ResultSet const& answer, std::size_t column);
    /// Texts of the messages of one level so far.
    static std::vector<std::string> texts(unsigned int level = 1000);
    /// `some` texts, `count` times.
    static std::vector<std::string> repeated(int count, std::vector<std::string> const& some);
    /// Closes the library's connection, and forgets the messages.
    static void closeLibrary();
    /// Number of times that the library opened the fixed path.
    static int opens();

    std::string const& file() const { return file_; }
    std::string const& directory() const { return directory_; }
    /// The builder's connection to the database.
    channel_database::ChannelDatabase& database() { return *database_; }

  private:
    std::string directory_;
    std::string file_;
    std::unique_ptr<channel_database::ChannelDatabase> database_;
};
