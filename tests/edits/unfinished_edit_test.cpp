// An edit that fails or is kept waiting: written whole, or every table is as it was.
#include <algorithm>
#include <memory>

#include "edits/edit_test.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::MatchesRegex;

using UnfinishedEdit = EditTest;

constexpr char kFavEdit[] = "fav2  0 9 10  0 8 13  1 7 12";  // adds, keeps and removes
constexpr char kTagAlone[] = "List [0-9]: UpdateTag 0>1";
constexpr char kAllEdit[] = "all  0 9 10  5 8 12";

TEST_F(UnfinishedEdit, IsRolledBackAtAnyStep) {
    struct Case {
        char const* arguments;
        std::string write;
        std::string condition;
        std::string hint;
    };
    Case const cases[] = {
        {kFavEdit, "UPDATE ON FavoriteItem", "NEW.Id = 712", "Update FAV Services."},
        {kFavEdit, "INSERT ON FavoriteItem", "1", "Add FAV Services."},
        {kFavEdit, "DELETE ON FavoriteItem", "1", "Remove unreceivable FAV Services."},
        {kFavEdit, "UPDATE ON Service", "NEW.FavTag2 = 1",
         "Update FavTag in Service Table.(Added FAV services)"},
        {kFavEdit, "UPDATE ON Service", "NEW.FavTag2 = 0",
         "Update FavTag in Service Table.(Removed FAV services)"},
        {kAllEdit, "UPDATE ON FavoriteItem", "NEW.Id = 112",
         "Update All list in the case of All list edit."},
        {kAllEdit, "UPDATE ON FavoriteItem", "NEW.Id = 812",
         "Update FAV list in the case of All list edit."},
    };
    for (auto const& test : cases) {
        SCOPED_TRACE(test.hint);
        startAnew();
        forbid(test.write, test.condition);
        EXPECT_EQ(edit(test.arguments), -2);
        EXPECT_THAT(texts(), ElementsAre("sqlite3_step failed:19, hint:'" + test.hint + "'."));
        EXPECT_THAT(statements(), EndsWith("\nROLLBACK TRANSACTION\n"));
        EXPECT_THAT(changes(), MatchesRegex(kTagAlone));
    }
}

// A transaction that the host has open stays the host's.
TEST_F(UnfinishedEdit, ThatDoesNotBeginRollsNothingBack) {
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    EXPECT_EQ(dbaccess::onServiceListEdit({"fav2"}), -2);
    EXPECT_THAT(texts(), ElementsAre("sqlite3_exec error:1, sql:'BEGIN TRANSACTION'.",
                                     "cannot start a transaction within a transaction"));
    EXPECT_EQ(sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(edit("fav2"), 101);
}

TEST_F(UnfinishedEdit, IsRolledBackAtOnceWhenItsCommitFails) {
    sqlite3_exec(db, "PRAGMA foreign_keys = ON", nullptr, nullptr, nullptr);
    change("CREATE TABLE Strict (Pid REFERENCES Service (Pid) DEFERRABLE INITIALLY DEFERRED)");
    change(
        "CREATE TRIGGER strict AFTER INSERT ON FavoriteItem BEGIN"
        " INSERT INTO Strict VALUES (NEW.ServiceId); END");
    EXPECT_EQ(edit("fav4  0 1 10  0 2 99"), -2);
    EXPECT_THAT(texts(), ElementsAre("sqlite3_exec error:19, sql:'COMMIT TRANSACTION'.",
                                     "FOREIGN KEY constraint failed"));
    EXPECT_THAT(statements(), EndsWith("\nCOMMIT TRANSACTION\nROLLBACK TRANSACTION\n"));
    EXPECT_THAT(changes(), MatchesRegex(kTagAlone));
    EXPECT_EQ(platform::state.sleepCount, 0);
}

TEST_F(UnfinishedEdit, WaitsForOtherConnectionsAsLongAsItsStageAllows) {
    // Statements at whose start another connection takes its lock.
    constexpr char kFind[] = "SELECT Pid FROM FavoriteList WHERE Uuid";
    constexpr char kTag[] = "UPDATE FavoriteList SET UpdateTag";
    constexpr char kItems[] = "SELECT ServiceId FROM FavoriteItem";
    constexpr char kBegin[] = "BEGIN TRANSACTION";
    constexpr char kCommit[] = "COMMIT TRANSACTION";
    constexpr auto kExclusive = DatabaseLock::kExclusive;
    constexpr auto kWriter = DatabaseLock::kWriter;
    constexpr auto kReader = DatabaseLock::kReader;
    constexpr int kNever = 0;
    constexpr char kTimeOut[] = " database is locked, time out, hint:'Update FAV Services.'.";
    struct Case {
        char const* lock;
        char const* takenAt;
        int releasedAt;  // number of the sleep
        int result;
        int sleeps;
        int tag;  // how often the update tag advances
        char const* lastError;
    };
    Case const cases[] = {
        {kExclusive, kFind, 49, 101, 49, 1, kTryAgain},
        {kExclusive, kFind, kNever, -2, 50, 0,
         " database is locked, time out, hint:'Find the list.'."},
        {kExclusive, kTag, kNever, -2, 60, 0,
         " database is locked, time out, hint:'Find the FAV lists.'."},
        {kExclusive, kItems, 49, 101, 49, 1, kTryAgain},
        {kExclusive, kItems, kNever, -2, 50, 1,
         " database is locked, time out, hint:'Read stored FAV services.'."},
        // The update tag gives up after ten attempts; the edit goes on.
        {kWriter, kTag, 9, 101, 9, 1, kTryAgain},
        {kReader, kTag, 10, 101, 10, 0, kTryAgain},
        {kWriter, kTag, kNever, -2, 60, 0, kTimeOut},
        // The begin takes no lock; the first step has fifty attempts.
        {kWriter, kBegin, 49, 101, 49, 1, kTryAgain},
        {kWriter, kBegin, kNever, -2, 50, 1, kTimeOut},
        // Readers hold up the commit alone.
        {kReader, kCommit, 49, 101, 49, 1, kTryAgain},
        {kReader, kBegin, kNever, -2, 50, 1, kTryAgain},
    };
    for (auto const& test : cases) {
        SCOPED_TRACE(std::string(test.lock) + " at " + test.takenAt + ", released at " +
                     std::to_string(test.releasedAt));
        startAnew();
        std::unique_ptr<DatabaseLock> lock;
        when(
            test.takenAt, [&] { lock = std::make_unique<DatabaseLock>(file(), test.lock); });
        platform::state.onSleep = [&](int number) {
            number == test.releasedAt ? lock.reset() : void();
        };
        EXPECT_EQ(edit(kFavEdit), test.result);
        lock.reset();

        EXPECT_EQ(platform::state.sleptMicroseconds, 100000U * static_cast<unsigned>(test.sleeps));
        auto const errors = texts();
        EXPECT_EQ(errors.back(), test.lastError);
        EXPECT_EQ(std::count(errors.begin(), errors.end(), kTryAgain), test.sleeps);
        EXPECT_EQ(rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 7"),
                  std::to_string(test.tag));
        if (test.result < 0) {
            EXPECT_EQ(changes(), test.tag == 0 ? "" : "List 7: UpdateTag 0>1");
        } else {
            EXPECT_EQ(rows("SELECT ServiceId, ChannelNum, isDeleted FROM FavoriteItem"
                           " WHERE FavoriteId = 7 ORDER BY Id"),
                      "10|9|0;12|7|1;13|8|0");
        }
    }
}

// Another process writes between the plan and its writing; fav2 is to hold 10 and 13 afterwards.
TEST_F(UnfinishedEdit, IsPlannedAgainWhenOvertaken) {
    constexpr char kAddsThirteen[] =
        "INSERT INTO FavoriteItem (ServiceId, FavoriteId, OriginalFavoriteId, ChannelNum)"
        " VALUES (13, 7, 7, 9)";
    constexpr char kUnique[] = "CREATE UNIQUE INDEX once ON FavoriteItem (FavoriteId, ServiceId)";
    constexpr char kKeepsNine[] =
        "CREATE TRIGGER nine BEFORE UPDATE ON FavoriteItem WHEN OLD.ChannelNum = 9"
        " BEGIN SELECT RAISE(ABORT, 'kept'); END";
    struct Case {
        std::vector<char const*> before, meanwhile;
        char const* lockedAt;  // another writer holds the file from there until the third sleep
        int result;
        std::vector<std::string> errors;
        bool isOvertaken;
    };
    std::string const busy = kTryAgain;
    std::string const twice = "sqlite3_step failed:19, hint:'Add FAV Services.'.";
    std::string const kept = "sqlite3_step failed:19, hint:'Update FAV Services.'.";
    std::string const locked = "sqlite3_exec error:5, sql:'BEGIN IMMEDIATE TRANSACTION'.";
    Case const cases[] = {
        {{}, {}, "", 101, {}, false},
        {{}, {kAddsThirteen}, "", 101, {}, true},
        {{kUnique}, {kAddsThirteen}, "", 101, {twice}, true},
        {{kUnique, kKeepsNine}, {kAddsThirteen}, "", -2, {twice, kept}, true},
        {{kKeepsNine, "UPDATE FavoriteItem SET ChannelNum = 9 WHERE Id = 710"},
         {},
         "",
         -2,
         {kept},
         false},
        {{},
         {kAddsThirteen},
         "BEGIN IMMEDIATE",
         101,
         repeated(3, {locked, "database is locked", busy}),
         true},
    };
    for (auto const& test : cases) {
        SCOPED_TRACE(&test - cases);
        startAnew();
        for (char const* sql : test.before)
            change(sql);
        std::unique_ptr<DatabaseLock> lock;
        when(
            "BEGIN TRANSACTION",
            [&] {
                for (char const* sql : test.meanwhile)
                    change(sql);
                if (*test.lockedAt != '\0')
                    when(
                        test.lockedAt,
                        [&] {
                            lock = std::make_unique<DatabaseLock>(file(), DatabaseLock::kWriter);
                        });
            });
        platform::state.onSleep = [&](int number) { number == 3 ? lock.reset() : void(); };
        EXPECT_EQ(edit("fav2  0 1 10  0 2 13"), test.result);
        EXPECT_EQ(texts(), test.errors);
        EXPECT_EQ(!texts(3000).empty(), test.isOvertaken);
        EXPECT_EQ(rows("SELECT ServiceId, ChannelNum FROM FavoriteItem WHERE FavoriteId = 7"
                       " ORDER BY ServiceId") == "10|1;13|2",
                  test.result > 0);
    }
}

// The owner gives lists other keys while an edit is under way: it ends as if it had come after.
TEST_F(UnfinishedEdit, MeansTheListsAsTheyAreBehindItsLock) {
    constexpr char const* kMoments[] = {"UPDATE FavoriteList SET UpdateTag",
                                        "SELECT Pid FROM FavoriteList WHERE Creator",
                                        "SELECT ServiceId FROM FavoriteItem", "BEGIN TRANSACTION"};
    auto const swapped = [](int one, int other) {
        std::string const sum = std::to_string(one + other);
        std::string const in = " IN (" + std::to_string(one) + "," + std::to_string(other) + ")";
        return Texts{
            "UPDATE FavoriteList SET Pid = -Pid WHERE Pid" + in,
            "UPDATE FavoriteList SET Pid = Pid + " + sum + " WHERE Pid < 0",
            "UPDATE FavoriteItem SET FavoriteId = " + sum + " - FavoriteId WHERE FavoriteId" + in};
    };
    auto const madeAnew = [](std::string const& pid) {
        return Texts{"DELETE FROM FavoriteItem WHERE FavoriteId = 7",
                     "UPDATE FavoriteList SET UpdateTag = 0, Pid = " + pid + " WHERE Pid = 7"};
    };
    Texts const cases[] = {swapped(7, 8),  swapped(7, 2),
                           swapped(1, 6),  madeAnew("7"),
                           madeAnew("20"), {"DELETE FROM FavoriteList WHERE Pid = 7"}};
    char const* const edits[] = {kFavEdit, "fav1  0 5 14  0 6 15", "cable  0 9 10  5 8 11",
                                 "all  0 9 10  9 8 12"};
    auto const lastText = [] { return texts().empty() ? "" : texts().back(); };
    auto const state = [&] {
        return rows("SELECT * FROM FavoriteItem ORDER BY FavoriteId, ServiceId, Id") + "\n" +
               rows("SELECT Pid, FavTag, FavTag2, FavTag3, FavTag4 FROM Service") + "\n" +
               rows("SELECT Pid, Uuid, MaxChannelNumber FROM FavoriteList");
    };
    for (Texts const& statements : cases) {
        auto const changeLists = [&] {
            for (std::string const& sql : statements)
                change(sql);
        };
        for (std::string const arguments : edits) {
            startAnew();
            ott("('FAV1', 2)");
            changeLists();
            int const expected = edit(arguments);
            std::string const after = state();
            std::string const refusal = lastText();
            for (char const* moment : kMoments) {
                bool const isPlanned = arguments.compare(0, 3, "fav") == 0;
                if (!isPlanned && moment == kMoments[2])
                    continue;
                SCOPED_TRACE(arguments + " // " + statements.back() + " // " + moment);
                startAnew();
                ott("('FAV1', 2)");
                when(moment, changeLists);
                EXPECT_EQ(edit(arguments), expected);
                EXPECT_EQ(state(), after);
                EXPECT_EQ(lastText(), refusal);
                std::string const uuid = arguments.substr(0, arguments.find(' '));
                EXPECT_NE(rows("SELECT UpdateTag FROM FavoriteList WHERE Uuid = '" + uuid + "'"),
                          "0");
            }
        }
    }
}

// What the host did to its connection before.
TEST_F(UnfinishedEdit, MeetsTheHostsConnection) {
    struct Case {
        char const* sql;
        int result;
        char const* lastError;
    };
    Case const cases[] = {
        {"PRAGMA reverse_unordered_selects = ON", 101, ""},
        {"PRAGMA count_changes = ON", -2, "a write gave a row: the host has count_changes on"},
        {"PRAGMA query_only = ON", -2, "sqlite3_step failed:8, hint:'Update FAV Services.'."},
    };
    for (auto const& test : cases) {
        SCOPED_TRACE(test.sql);
        startAnew();
        sqlite3_exec(db, test.sql, nullptr, nullptr, nullptr);
        EXPECT_EQ(edit(kFavEdit), test.result);
        EXPECT_EQ(texts().empty() ? "" : texts().back(), test.lastError);
        EXPECT_EQ(rows("SELECT FavTag2, FavTag3 FROM Service WHERE Pid = 13"),
                  test.result > 0 ? "1|0" : "0|0");
    }
    EXPECT_TRUE(dbaccess::get_dbservices("all").empty());  // query_only: no views
    EXPECT_EQ(texts().back(), "SQL ERROR res:8.");
}

// A statement of the host's holds an old state of a database in WAL mode, which nobody may write
// behind. The edit says so, and is done once the statement is.
TEST_F(UnfinishedEdit, WaitsInVainForAStateThatTheHostHolds) {
    change("PRAGMA journal_mode = WAL");
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, "SELECT * FROM FavoriteItem", -1, &statement, nullptr);
    sqlite3_step(statement);
    change("UPDATE FavoriteItem SET ChannelNum = 4 WHERE Id = 712");
    EXPECT_EQ(dbaccess::onServiceListEdit({"fav2"}), -2);
    EXPECT_EQ(texts().back(),
              " database is locked, time out, hint:'Remove unreceivable FAV Services.'.");
    sqlite3_finalize(statement);
    EXPECT_EQ(edit("fav2"), 101);
}

}  // namespace
