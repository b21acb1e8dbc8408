// sqlexec, sqlprepare, sqlstep and sqlstepquery on a connection of the host.
#include "support/test_database.h"

namespace {

using namespace testing;

class SqlHelpers : public TestDatabase {
  protected:
    void SetUp() override {
        TestDatabase::SetUp();
        ASSERT_EQ(sqlite3_open(file().c_str(), &connection_), SQLITE_OK);
        database().list("User.tvFAV1");
    }
    void TearDown() override {
        EXPECT_EQ(sqlite3_close(connection_), SQLITE_OK) << "a failed helper left its statement";
        TestDatabase::TearDown();
    }
    sqlite3_stmt* prepared(char const* sql) {
        sqlite3_stmt* stmt = nullptr;
        EXPECT_EQ(sqlprepare(connection_, sql, -1, &stmt, nullptr), SQLITE_OK) << sql;
        return stmt;
    }
    int exec(char const* sql, char** error) {
        return sqlexec(connection_, sql, nullptr, nullptr, error);
    }

    sqlite3* connection_ = nullptr;
};

TEST_F(SqlHelpers, ExecReportsAndFreesTheErrorText) {
    char* error = nullptr;
    EXPECT_EQ(exec("SELECT 1;", &error), SQLITE_OK);
    EXPECT_EQ(exec("SELECT y FROM Lcn;", nullptr), SQLITE_ERROR);
    auto const memory = sqlite3_memory_used();
    for (bool const isEnabled : {true, false}) {
        platform::state.isEnabled = [=](unsigned int) { return isEnabled; };
        EXPECT_EQ(exec("SELECT x FROM Lcn;", &error), SQLITE_ERROR);
        EXPECT_EQ(error, nullptr);
        EXPECT_EQ(sqlite3_memory_used(), memory);
    }
    EXPECT_THAT(texts(), ElementsAre("sqlite3_exec error:1, sql:'SELECT y FROM Lcn;'.",
                                     "sqlite3_exec error:1, sql:'SELECT x FROM Lcn;'.",
                                     "no such column: x"));
}

TEST_F(SqlHelpers, PrepareReportsAndLeavesNoHandle) {
    sqlite3_stmt* stmt = nullptr;
    char const* tail = nullptr;
    EXPECT_EQ(sqlprepare(connection_, "SELEC", -1, &stmt, nullptr), SQLITE_ERROR);
    EXPECT_EQ(stmt, nullptr);
    EXPECT_THAT(texts(), ElementsAre("sqlite3_prepare_v2 failed:1, sql:'SELEC'."));
    EXPECT_EQ(sqlprepare(connection_, "SELECT 1; x", 9, &stmt, &tail), SQLITE_OK);
    EXPECT_STREQ(tail, " x");
    sqlite3_finalize(stmt);
}

TEST_F(SqlHelpers, StepsKeepASuccessfulStatement) {
    sqlite3_stmt* stmt = prepared("UPDATE FavoriteList SET UpdateTag = ? WHERE Pid = 1;");
    for (int const tag : {5, 6}) {
        sqlite3_bind_int(stmt, 1, tag);
        ASSERT_EQ(sqlstep(&stmt, "tag"), SQLITE_DONE);
        sqlite3_reset(stmt);
        EXPECT_EQ(rows("SELECT UpdateTag FROM FavoriteList"), std::to_string(tag));
    }
    sqlite3_finalize(stmt);
    stmt = prepared("SELECT Creator FROM FavoriteList;");
    EXPECT_EQ(sqlstepquery(&stmt, "rows"), SQLITE_ROW);
    EXPECT_EQ(sqlstepquery(&stmt, "rows"), SQLITE_DONE);  // no further row: a failure
    EXPECT_EQ(stmt, nullptr);
    EXPECT_THAT(texts(), ElementsAre("sqlite3_step failed:101, hint:'rows'."));
}

TEST_F(SqlHelpers, OtherCodesEndAStepAtOnce) {
    sqlite3_stmt* row = prepared("SELECT 1;");
    EXPECT_EQ(sqlstep(&row, "a row"), SQLITE_ROW);
    sqlite3_stmt* reader = prepared("SELECT * FROM FavoriteList;");
    ASSERT_EQ(sqlite3_step(reader), SQLITE_ROW);
    sqlite3_stmt* drop = prepared("DROP TABLE FavoriteList;");
    EXPECT_EQ(sqlstep(&drop, "drop"), SQLITE_LOCKED);
    sqlite3_finalize(reader);
    EXPECT_EQ(row, nullptr);
    EXPECT_EQ(drop, nullptr);
    EXPECT_EQ(platform::state.sleepCount, 0);
    EXPECT_THAT(texts(), ElementsAre("sqlite3_step failed:100, hint:'a row'.",
                                     "sqlite3_step failed:6, hint:'drop'."));
}

TEST_F(SqlHelpers, ABusyStepIsTriedFiftyTimes) {
    std::string const update = "UPDATE FavoriteList SET UpdateTag = 9";
    std::tuple<decltype(&sqlstep), int, std::string> const cases[] = {
        {sqlstep, SQLITE_DONE, update}, {sqlstepquery, SQLITE_ROW, update + " RETURNING 1"}};
    for (auto const& [step, success, sql] : cases) {
        for (int const freeAt : {49, 50}) {  // the first is in time
            platform::state = {};
            sqlite3_stmt* stmt = prepared(sql.c_str());
            DatabaseLock lock(file());
            platform::state.onSleep = [&](int count) { count == freeAt ? lock.release() : void(); };
            EXPECT_EQ(step(&stmt, "tag"), freeAt == 49 ? success : SQLITE_BUSY);
            EXPECT_EQ(stmt != nullptr, freeAt == 49);
            sqlite3_finalize(stmt);
            EXPECT_EQ(platform::state.sleptMicroseconds,
                      static_cast<unsigned int>(freeAt) * 100000);
            auto expected = repeated(freeAt, {kTryAgain});
            if (freeAt == 50)
                expected.push_back(" database is locked, time out, hint:'tag'.");
            EXPECT_EQ(texts(), expected);
        }
    }
    EXPECT_EQ(rows("SELECT UpdateTag FROM FavoriteList"), "9");
}

}  // namespace
