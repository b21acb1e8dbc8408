// The frame of an edit request: what it refuses and in which order, and the update tag.
#include <cerrno>

#include "edits/edit_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

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
        {{"", "0", "1", "10", "0"}, -1, "Wrong number of arguments: 5.", 0},
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
        std::string const list = "List " + std::to_string(test.taggedList) + ": UpdateTag [0-9>]*";
        EXPECT_THAT(changes(), MatchesRegex(test.taggedList == 0 ? "" : list));
    }

    change("UPDATE FavoriteList SET Pid = 0 WHERE Pid = 2");
    EXPECT_EQ(edit("cable  0 1 10"), -2);
    EXPECT_THAT(texts(), ElementsAre("can't find favoriteListId"));
    for (char const* creator : {"User.tv.magazine$", "user.TVfavX", "User.tvFAV5"}) {
        change(std::string("UPDATE FavoriteList SET Creator = '") + creator + "' WHERE Pid = 0");
        EXPECT_EQ(edit("fav1"), creator[7] == '.' ? 101 : -2);
    }
    EXPECT_THAT(texts(), ElementsAre("Number of FAV lists is wrong: 5!"));
    EXPECT_EQ(changes(), "List 6: UpdateTag 2>3");
}

TEST_F(EditRequest, OpensTheDatabaseBeforeItLooksAtTheStrings) {
    sqlite3_close(db);
    db = nullptr;
    EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(7); }), 21);
    EXPECT_EQ(watched([] { return dbaccess::renumberFAVList(7, 2); }), -2);
    EXPECT_THAT(texts(), ElementsAre("the channel database is not open"));
    EXPECT_EQ(opens(), 0);

    platform::state.channelDatabase = platform::kUnopenablePath;
    EXPECT_EQ(edit("two strings"), -2);
    platform::state.channelDatabase = file();
    EXPECT_EQ(edit("two strings"), -1);
    EXPECT_EQ(opens(), 2);
}

TEST_F(EditRequest, ReadsUnsignedNumbersAndNothingElse) {
    auto const* const numbers = "+0 007 10  -2 4294967295 +11  0 2147483648 13  0 -4294967295 14";
    EXPECT_EQ(edit(std::string("fav4  ") + numbers), 101);
    EXPECT_EQ(
        rows("SELECT ServiceId, ChannelNum FROM FavoriteItem WHERE FavoriteId = 9 ORDER BY Id"),
        "10|7;11|-1;13|-2147483648;14|1");
    for (std::string const text : {"", " 1", "1 ", "1.0", "0x1", "+", "--1", "4294967296"}) {
        for (std::size_t position = 1; position <= 3; ++position) {
            Texts arguments = {"fav2", "0", "1", "10"};
            arguments[position] = text;
            EXPECT_EQ(request(arguments), -1);
            EXPECT_THAT(texts(), ElementsAre("argument " + std::to_string(position) +
                                             " is no number: '" + text + "'"));
        }
    }
}

// An All list edit converts between its steps, a FAV list edit before them but after it has read
// the stored items.
TEST_F(EditRequest, FailsForWhatFailsFirst) {
    forbid("UPDATE OF ChannelNum ON FavoriteItem", "NEW.ServiceId = 10");
    EXPECT_EQ(edit("all  0 1 10  x 2 11"), -2);
    EXPECT_EQ(edit("all  0 9 11  x 2 10"), -1);
    EXPECT_THAT(statements(), HasSubstr(" AND serviceId= 11;\nROLLBACK TRANSACTION\n"));
    EXPECT_EQ(changes(), "List 1: UpdateTag 1>2");
    EXPECT_EQ(edit("fav2  0 1 10  x 2 11"), -1);
    EXPECT_THAT(statements(), Not(HasSubstr("BEGIN")));
}

TEST_F(EditRequest, RunsSyncUnderTheMutexOnceTheEditIsInTheFile) {
    std::string seen;
    platform::state.onCommand = [&](std::string const& command) {
        seen = command + ": " + rows("SELECT count(*) FROM FavoriteItem WHERE FavoriteId = 7");
        EXPECT_EQ(pthread_mutex_trylock(&svresult_mutex), EBUSY);
        return -1;
    };
    EXPECT_EQ(edit("fav2"), 101);
    EXPECT_EQ(seen, "sync: 0");
    EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(EditRequest, AdvancesTheUpdateTagByOneAndWrapsAt65535) {
    std::pair<char const*, char const*> const cases[] = {
        {"65534", "65535"}, {"65535", "0"}, {"65536", "65537"}, {"NULL", "NULL"}};
    for (auto const& [before, after] : cases) {
        change(std::string("UPDATE FavoriteList SET UpdateTag = ") + before + " WHERE Pid = 7");
        EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(7); }), 0);
        EXPECT_EQ(rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 7"), after);
    }
    EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(4294967295U); }), 0);
    EXPECT_THAT(statements(), HasSubstr(" Where Pid= 4294967295;"));
    EXPECT_EQ(changes(), "");
    forbid("UPDATE ON FavoriteList");
    EXPECT_EQ(watched([] { return dbaccess::UpdateListTag(7); }), 19);
    EXPECT_THAT(texts(), ElementsAre("SQL error:19"));
}

}  // namespace
