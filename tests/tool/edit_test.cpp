// edit: what it shows, what it writes, and what it refuses.
#include "tool_process.h"

using testing::HasSubstr;

namespace {

// FAV1 is "1 1;2 2;3 3;5 5" (number and service id) before each edit.
TEST_F(ToolTest, WritesTheOperationsOfAnEditOneAfterTheOther) {
    const struct {
        char const* operations;
        char const* fav1;
    } cases[] = {
        {"add テレビ東京", "1 1;2 2;3 3;5 5;6 4"},
        {"add id:4 at 4", "1 1;2 2;3 3;4 4;5 5"},
        {"add service-4 at 2", "1 1;2 4;3 2;4 3;5 5"},
        {"remove VOX", "1 1;2 2;5 5"},
        {"remove VOX --renumber", "1 1;2 2;3 5"},
        {"move 3 to 1", "1 3;2 1;3 2;5 5"},
        {"move 1 to 5", "1 2;2 3;3 5;5 1"},
        {"move Jazz to 9", "1 1;2 2;3 3;9 5"},
        {"hide 2", "1 1;2 2 deleted;3 3;5 5"},
        {"hide 2 --renumber", "1 1;2 2 deleted;2 3;3 5"},
        {"hide 2 move VOX to 2", "1 1;2 2 deleted;2 3;5 5"},
        {"hide 2 move VOX to 2 move Jazz to 9 restore 'ZDF HD'", "1 1;2 2;3 3;9 5"},
        {"hide 2 move 3 to 2 restore 2 move 5 to 9", "1 1;2 2;3 3;9 5"},
        {"hide 2 move 3 to 2 move 2 to 7", "1 1;2 2 deleted;5 5;7 3"},
        {"remove 1 remove 2 remove 3 remove 5", ""},
        {"--renumber", "1 1;2 2;3 3;4 5"},
        {"move 2-3 to 1", "1 2;2 3;3 1;5 5"},
        {"move 1-2 to 3", "1 3;3 1;4 2;5 5"},
        {"move '*x*' to 1 remove 'J??z'", "1 3;2 1;3 2"},
        {"swap Jazz 1", "1 5;2 2;3 3;5 1"},
        {"sort by name", "1 1;2 5;3 3;5 2"},
        {"sort by name 2-", "1 1;2 5;3 3;5 2"},
        {"move 1 to 9 sort by number", "2 1;3 2;5 3;9 5"},
        {"remove 2- add 'テ*' at 1", "1 4;2 1"},
        {"remove 1- copy all at 7 hide 8-11",
         "7 1;8 2 deleted;9 3 deleted;10 4 deleted;11 5 deleted;12 6"},
        {"hide 2-3 restore 3-", "1 1;2 2 deleted;3 3;5 5"},
        {"remove 'das erste'", "2 2;3 3;5 5"},
        {"hide 2 move 3 to 2 move 'ZDF HD' to 5", "1 1;2 3;5 2 deleted;5 5"},
    };
    std::string const before = content("set.db");
    for (auto const& c : cases) {
        output("edit FAV1 --dry-run " + std::string(c.operations));
        EXPECT_EQ(content("set.db"), before) << "a dry run writes nothing";
        std::string const table = out.substr(0, out.find("Dry run"));
        synced();
        output("edit FAV1 " + std::string(c.operations));
        EXPECT_EQ(out.substr(0, out.find("Written")), table) << c.operations;
        EXPECT_EQ(fav(1), c.fav1) << c.operations;
        EXPECT_EQ(synced(), c.operations[0] != '-') << "an edit's sync; of no edit, SQLite's own";
        EXPECT_NE(rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 11"), "0");
        write("set.db", before);
    }
    output("edit FAV1 hide 2 --everywhere --renumber");
    EXPECT_EQ(fav(1), "1 1;2 2 deleted;2 3;3 5") << "whatever has number 2 in the next round";
    EXPECT_EQ(rows("SELECT group_concat(ServiceId) FROM FavoriteItem WHERE FavoriteId = 1 AND"
                   " isDeleted = 1"),
              "2");
    write("set.db", before);
    char const* const blocks[][2] = {{"move '[ZVJ]*' to 1", "1 2;2 3;3 5;5 1"},
                                     {"move '[ZVD]*' to 5", "1 5;5 2;6 3;7 1"}};
    for (auto const& [operation, fav1] : blocks) {
        change(
            "UPDATE FavoriteItem SET ChannelNum = NULL"
            " WHERE FavoriteId = 11 AND ServiceId IN (2, 3)");
        output("edit FAV1 " + std::string(operation));
        EXPECT_EQ(fav(1), fav1) << "a block stays together, also without numbers";
        write("set.db", before);
    }
}

TEST_F(ToolTest, ShowsWhatAnEditChanges) {
    EXPECT_EQ(output("edit FAV1 add テレビ東京 at 2 remove 5 hide Das\\ Erste"),
              "List  Change   Before  After  Name        Id\n"
              "----  -------  ------  -----  ----------  --\n"
              "FAV1  removed       5         Jazz         5\n"
              "FAV1  hidden        1      1  Das Erste    1\n"
              "FAV1  added                2  テレビ東京   4\n"
              "FAV1  moved         2      3  ZDF HD       2\n"
              "FAV1  moved         3      4  VOX          3\n"
              "Written, and flushed to the disk.\n");
    EXPECT_EQ(rows("SELECT Pid, FavTag FROM Service WHERE Pid IN (1, 4, 5)"), "1|1;4|1;5|0");
    output("edit FAV1 add id:6 at 2");
    EXPECT_THAT(out, HasSubstr("FAV1  added, those behind follow              2  ZDF HD   6\n"));
    output("edit FAV1 remove 1 move 2 to 6");
    output("edit FAV1 move 6 to 3 --json");
    EXPECT_THAT(out, HasSubstr("\"id\": 2,\n      \"cause\": "));
    expect({"edit FAV1 move 3 to 9 --json", 0, "\"change\": [\n        \"moved\"\n", nullptr});
    expect({"edit FAV1 move 9 to 9", 0, "Nothing to change.", nullptr});
    expect({"edit FAV1 move 9 to 8", 0, "Written, and flushed to the disk.", nullptr});
}

// What joins takes the column's default; an edit that follows may show it.
TEST_F(ToolTest, SaysThatTheSchemaHidesWhatIsAdded) {
    change(
        "PRAGMA writable_schema = 1; UPDATE sqlite_master SET sql = replace(sql,"
        " 'isDeleted          INTEGER DEFAULT 0', 'isDeleted INTEGER DEFAULT 1')");
    expect({"edit FAV1 add テレビ東京", 0, "FAV1  added, hidden              6", nullptr});
}

TEST_F(ToolTest, HidesInOtherListsAndInTheFavListsWithThem) {
    expect({"edit all hide VOX --renumber", 0, "FAV1  moved        5      3  Jazz", nullptr});
    EXPECT_EQ(fav(1), "1 1;2 2;3 3 deleted;3 5");
    EXPECT_EQ(rows("SELECT isDeleted FROM FavoriteItem WHERE FavoriteId = 1 AND ServiceId = 3"),
              "1");
    expect({"edit u-all restore 3", 0, "FAV2  restored", nullptr});
    EXPECT_EQ(fav(2), "1 3");
    expect({"edit Astra move 2 to 1", 0, "Astra  moved", nullptr});
    EXPECT_EQ(rows("SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = 21 ORDER BY ChannelNum"),
              "3;1");
}

TEST_F(ToolTest, HidesInEveryListAtOnceAndTakesItBackAtOnce) {
    std::string const marks =
        "SELECT FavoriteId FROM FavoriteItem WHERE ServiceId = 3 AND isDeleted";
    expect({"edit FAV1 hide VOX --everywhere", 0, "Astra  hidden", nullptr});
    EXPECT_EQ(rows(marks), "1;11;12;21");
    output("undo");
    EXPECT_EQ(rows(marks), "12");
    expect({"edit FAV1 move 1 to 2 --everywhere", 2, nullptr, "hide and restore alone"});
    // Another writer comes between the first list and the next.
    write("bin/sync", "#!/bin/sh\n[ -e once ] || { >once; " TOOL
                      " --db set.db edit Astra move 1 to 9 --no-undo >other; }\n");
    expect({"edit FAV1 hide VOX --everywhere", 0, "Astra  hidden", nullptr});
    EXPECT_TRUE(std::filesystem::exists(folder / "other"));
    EXPECT_EQ(rows(marks), "1;11;12;21");
}

TEST_F(ToolTest, KeepsTheNumbersOfOttChannelsFree) {
    ott({4, 6});
    output("edit FAV1 add テレビ東京 add id:6 at 2");
    EXPECT_EQ(fav(1), "1 1;2 6;3 2;5 3;7 5;8 4");
    expect({"edit FAV1 move VOX to 6", 1, nullptr, "number 6 of FAV1 belongs to an OTT channel"});
    output("edit FAV1 remove 1 --renumber");
    EXPECT_EQ(fav(1), "1 6;2 2;3 3;5 5;7 4");
}

TEST_F(ToolTest, RefusesEditsWithAReasonAndWritesNothing) {
    Invocation const runs[] = {
        {"edit FAV1 frobnicate 1", 2, nullptr, "'frobnicate' is none of add, remove"},
        {"edit FAV1 remove", 2, nullptr, "remove needs a service"},
        {"edit FAV1 move 1", 2, nullptr, "move needs \"to\" and a channel number"},
        {"edit FAV1 move 1 to x", 2, nullptr, "to needs a channel number"},
        {"edit FAV1 move 1 to 0", 2, nullptr, "channel numbers go from 1 to 2147483647"},
        {"edit FAV1 move 1 to 2147483648", 2, nullptr, "channel numbers go from 1"},
        {"edit all add VOX", 2, nullptr, "added to and removed from FAV1 to FAV4 only"},
        {"edit FAV1 remove CNN", 1, nullptr, "FAV1 holds no service 'CNN'"},
        {"edit FAV1 remove '[VOX]'", 1, nullptr, "FAV1 holds no service '[VOX]'"},
        {"edit FAV1 --from ''", 2, nullptr, "--from: a value is needed, not ''"},
        {"edit FAV1 remove 'DasErst'", 1, nullptr, "did you mean 'Das Erste'?"},
        {"edit FAV1 move 1-2 to 2147483647", 1, nullptr, "is left behind"},
        {"edit FAV1 move 1-2 to 9223372036854775807", 2, nullptr, "channel numbers go from 1"},
        {"edit FAV1 hide 2 move 3 to 2 swap id:2 5", 1, nullptr, "no place to swap with"},
        {"edit FAV1 move 5 to 2147483647 add id:4 at 2147483647", 1, nullptr, "is left behind"},
        {"edit FAV1 mvoe 5 to 2", 2, nullptr, "did you mean 'move'?"},
        {"edit FAV1 remove 30-", 1, nullptr, "FAV1 holds no service '30-'"},
        {"edit FAV1 copy FAV2 to FAV3", 2, nullptr, "the list that is edited, FAV1"},
        {"edit FAV1 sort by provider", 1, nullptr, "does not tell who broadcasts"},
        {"edit FAV1 add VOX", 1, nullptr, "FAV1 already holds id:3 (VOX, "},
        {"edit FAV2 add VOX", 1, nullptr, "number 1, hidden); restore it"},
        {"edit FAV3 add 'ZDF HD'", 1, nullptr,
         "id:2 (ZDF HD, satellite 4, 11493 MHz, 1-1011-11110, number 2), id:6 ("},
    };
    std::string const before = content("set.db");
    for (Invocation const& each : runs)
        expect(each);
    EXPECT_EQ(content("set.db"), before);
    EXPECT_FALSE(synced());
}

TEST_F(ToolTest, ExplainsEditsThatTheDatabaseDoesNotAllow) {
    char const* const cases[][2] = {
        {"DELETE FROM FavoriteList WHERE Pid = 14",
         "it needs exactly four FAV lists, and the database has 3"},
        {"UPDATE FavoriteItem SET ChannelNum = NULL WHERE FavoriteId = 11 AND ServiceId = 2",
         "id:2 (ZDF HD) has no channel number that could be written back"},
        {"CREATE TRIGGER refuse BEFORE UPDATE ON FavoriteItem BEGIN SELECT RAISE(ABORT, 'no');"
         " END",
         "failed and was rolled back: nothing is written but"},
    };
    std::string const before = content("set.db");
    for (auto const& [sql, reason] : cases) {
        change(sql);
        std::string const items = rows("SELECT * FROM FavoriteItem");
        output("edit FAV1 hide 1", 1);
        EXPECT_THAT(err, HasSubstr(reason)) << sql;
        EXPECT_EQ(rows("SELECT * FROM FavoriteItem"), items) << sql;
        write("set.db", before);
    }
    change(
        "CREATE TRIGGER refuse BEFORE UPDATE ON FavoriteItem WHEN new.ChannelNum < old.ChannelNum"
        " BEGIN SELECT RAISE(ABORT, 'no'); END");
    expect({"edit FAV1 remove VOX --renumber", 0, "Written, and flushed",
            "the list is written, but it could not be renumbered: "});
    EXPECT_EQ(fav(1), "1 1;2 2;5 5");
    write("set.db", before);
    change(
        "CREATE TRIGGER refuse BEFORE UPDATE ON FavoriteItem WHEN old.FavoriteId = 21 BEGIN SELECT"
        " RAISE(ABORT, 'no'); END");
    expect({"edit FAV1 hide VOX --everywhere", 1, "FAV1  hidden       3",
            "list's update tag; written before: all; a part is written"});
    EXPECT_EQ(fav(1), "1 1;2 2;3 3 deleted;5 5");
    write("set.db", before);
    change("INSERT INTO FavoriteItem (ServiceId, FavoriteId, ChannelNum) VALUES (99, 11, 9)");
    output("edit FAV1 hide 1");
    EXPECT_THAT(err, HasSubstr("FAV1 holds 1 items that it cannot show; the edit drops them"));
}

}  // namespace
