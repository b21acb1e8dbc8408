// The frame of an edit request: what it refuses and in which order, and the update tag.
#include <cerrno>

#include "edits/edit_test.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

using EditRequest = EditTest;

TEST_F(EditRequest, RefusedTouchesNothingButTheTagOfTheListItNames) {
    struct Case {
        Texts arguments;
        int result;
        std::string message;
        int taggedList;  // 0: none
    };
    Case const cases[] = {
        {{}, -1, "Wrong number of arguments: 0.", 0},
        {{"fav2", "0"}, -1, "Wrong number of arguments: 2.", 0},
        {{"fav2", "0", "1"}, -1, "Wrong number of arguments: 3.", 0},
        {{"", "0", "1", "10", "0"}, -1, "Wrong number of arguments: 5.", 0},
        {{"fav2", "0", "1", "10", "0", "2"}, -1, "Wrong number of arguments: 6.", 0},
        {{""}, -2, "Favorite list is not defined", 0},
        {{"nobody", "0", "1", "10"}, -2, "can't find favoriteListId", 0},
        {{"fav2'; DELETE FROM FavoriteItem; --"}, -2, "can't find favoriteListId", 0},
        {{"all"}, -2, "Can't delete all the channels from the all list!", 1},
        {{"cable"}, -2, "Can't delete all the channels from the all list!", 2},
        {{"fav2", "0", "1", "10", "0", "2", "x"}, -1, "argument 6 is no number: 'x'", 7},
        {{"all", "0", "1", "10", "0", "y", "11"}, -1, "argument 5 is no number: 'y'", 1},
    };
    for (auto const& test : cases) {
        SCOPED_TRACE(test.message);
        EXPECT_EQ(request(test.arguments), test.result);
        EXPECT_THAT(texts(), ElementsAre(test.message));
        std::string const tag = "FavoriteList " + std::to_string(test.taggedList) + ": UpdateTag";
        EXPECT_THAT(changes(), AllOf(SizeIs(test.taggedList == 0 ? 0 : 1), Each(StartsWith(tag))));
    }

    change("UPDATE FavoriteList SET Pid = 0 WHERE Pid = 2");
    EXPECT_EQ(edit("cable", {{0, 1, 10}}), -2);
    EXPECT_THAT(texts(), ElementsAre("can't find favoriteListId"));
    for (const char* creator : {"User.tv.magazine$", "user.TVfavX", "User.tvFAV5"}) {
        change(std::string("UPDATE FavoriteList SET Creator = '") + creator + "' WHERE Pid = 0");
        EXPECT_EQ(edit("fav1", {}), creator[7] == '.' ? 101 : -2);
    }
    EXPECT_THAT(texts(), ElementsAre("Number of FAV lists is wrong: 5!"));
    EXPECT_THAT(changes(), ElementsAre("FavoriteList 6: UpdateTag 2>3"));
}

TEST_F(EditRequest, OpensTheDatabaseBeforeItLooksAtTheStrings) {
    sqlite3_close(db);
    db = nullptr;
    platform::redirectOpen(platform::kChannelDatabasePath, platform::kUnopenablePath);
    EXPECT_EQ(request({"two", "strings"}), -2);
    EXPECT_THAT(texts(1), ElementsAre("will open db "));
    EXPECT_THAT(texts(), ElementsAre("open or create db failed,res:14"));
    EXPECT_EQ(db, nullptr);

    platform::redirectOpen(platform::kChannelDatabasePath, file());
    EXPECT_EQ(request({"two", "strings"}), -1);
    EXPECT_EQ(edit("fav1", {}), 101);
    EXPECT_EQ(opens(), 2);
    EXPECT_EQ(sqlite3_exec(db, "SELECT * FROM UriView", nullptr, nullptr, nullptr), SQLITE_ERROR);
}

TEST_F(EditRequest, ReadsUnsignedNumbersAndNothingElse) {
    std::pair<const char*, const char*> const numbers[] = {
        {"+7", "7"},  {"007", "7"},         {"4294967295", "-1"},
        {"-1", "-1"}, {"-4294967295", "1"}, {"2147483648", "-2147483648"}};
    for (std::string const uuid : {"cable", "fav3"}) {
        std::string const pid = uuid == "cable" ? "2" : "8";
        change("UPDATE FavoriteItem SET ServiceId = 10 WHERE Id = 812");
        for (auto const& [text, stored] : numbers) {
            EXPECT_GE(request({uuid, "+0", text, "10"}), 0) << text;
            EXPECT_EQ(rows("SELECT ChannelNum FROM FavoriteItem WHERE ServiceId = 10"
                           " AND FavoriteId = " +
                           pid),
                      stored);
        }
        for (std::string const text : {"", " 1", "1 ", "1.0", "0x1", "+", "--1", "4294967296"}) {
            for (std::size_t position = 1; position <= 3; ++position) {
                Texts arguments = {uuid, "0", "1", "10"};
                arguments[position] = text;
                EXPECT_EQ(request(arguments), -1) << text;
                EXPECT_THAT(texts(), ElementsAre("argument " + std::to_string(position) +
                                                 " is no number: '" + text + "'"));
            }
        }
    }
}

// An All list edit converts between its steps, a FAV list edit before them but after it has read
// the stored items.
TEST_F(EditRequest, FailsForWhatFailsFirst) {
    forbid("UPDATE OF ChannelNum ON FavoriteItem", "NEW.ServiceId = 10");
    EXPECT_EQ(request({"all", "0", "1", "10", "x", "2", "11"}), -2);
    EXPECT_EQ(request({"all", "0", "9", "11", "x", "2", "10"}), -1);
    EXPECT_THAT(statements(), HasSubstr("isDeleted = 0 WHERE FavoriteId IN(6,7,8,9) AND serviceId= "
                                        "11;\nROLLBACK TRANSACTION\n"));
    EXPECT_THAT(changes(), ElementsAre("FavoriteList 1: UpdateTag 1>2"));
    EXPECT_EQ(request({"fav2", "0", "1", "10", "x", "2", "11"}), -1);
    EXPECT_THAT(statements(), Not(HasSubstr("BEGIN")));

    change("UPDATE FavoriteItem SET ServiceId = NULL WHERE Id = 711");
    EXPECT_EQ(request({"fav2", "0", "1", "10", "x", "2", "11"}), -2);
    EXPECT_EQ(edit("fav2", {{0, 1, 15}}), -2);
    EXPECT_THAT(statements(), Not(HasSubstr("BEGIN")));
    EXPECT_THAT(texts(), ElementsAre("sqlite3_exec error:4, sql:'SELECT ServiceId FROM FavoriteItem"
                                     " WHERE FavoriteId = 7;'.",
                                     "query aborted"));
}

TEST_F(EditRequest, RunsSyncUnderTheMutexOnceTheEditIsInTheFile) {
    std::string seen;
    platform::onCommand([&](const std::string& command) {
        seen = command + ": " + rows("SELECT count(*) FROM FavoriteItem WHERE FavoriteId = 7");
        EXPECT_EQ(pthread_mutex_trylock(&svresult_mutex), EBUSY);
        return -1;
    });
    EXPECT_EQ(edit("fav2", {}), 101);
    EXPECT_EQ(seen, "sync: 0");
    EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(EditRequest, CallbacksStopTheQueryAtWhatIsNoKey) {
    std::tuple<const char*, int, unsigned int> const cases[] = {
        {"35", 0, 35}, {"-1", 0, 4294967295U}, {"0", 0, 0},
        {"", -1, 1},   {"4294967296", -1, 1},  {nullptr, -1, 1}};
    for (auto const& [value, result, last] : cases) {
        std::string copy = value != nullptr ? value : "";
        char* values[] = {value != nullptr ? copy.data() : nullptr};
        for (auto* const callback : {dbaccess::FAVlistIdCallback, dbaccess::FAVserviceIdCallback,
                                     dbaccess::FAVitemIdCallback}) {
            std::vector<unsigned int> keys = {1};
            EXPECT_EQ(callback(&keys, 1, values, nullptr), result) << copy;
            EXPECT_THAT(keys, AllOf(SizeIs(result == 0 ? 2 : 1), testing::Contains(last)));
        }
        unsigned int key = 1;
        EXPECT_EQ(dbaccess::listIdCallback(&key, 1, values, nullptr), result);
        EXPECT_EQ(key, last);
    }
}

TEST_F(EditRequest, AdvancesTheUpdateTagByOneAndWrapsAt65535) {
    std::pair<const char*, const char*> const cases[] = {
        {"65534", "65535"}, {"65535", "0"}, {"65536", "65537"}, {"NULL", "NULL"}};
    for (auto const& [before, after] : cases) {
        change(std::string("UPDATE FavoriteList SET UpdateTag = ") + before + " WHERE Pid = 7");
        EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(7); }), 0);
        EXPECT_EQ(rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 7"), after);
    }
    EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(4294967295U); }), 0);
    EXPECT_THAT(statements(), HasSubstr(" Where Pid= 4294967295;"));
    EXPECT_THAT(changes(), IsEmpty());
    forbid("UPDATE ON FavoriteList");
    EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(7); }), 19);
    EXPECT_THAT(texts(), ElementsAre("SQL error:19"));
}

TEST_F(EditRequest, IsWhatOpensTheDatabaseForTagAndRenumbering) {
    sqlite3_close(db);
    db = nullptr;
    EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(7); }), 21);
    EXPECT_THAT(texts(), ElementsAre("SQL error:21"));
    EXPECT_EQ(watched([] { return dbaccess::renumberFAVList(7, 2); }), -2);
    EXPECT_THAT(texts(), ElementsAre("the channel database is not open"));
    EXPECT_THAT(platform::openedPaths(), IsEmpty());
}

}  // namespace
