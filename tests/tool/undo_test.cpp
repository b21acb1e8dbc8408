// undo: every command that writes, taken back.
#include "tool_process.h"

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

constexpr char kItems[] =
    "SELECT FavoriteId, ServiceId, ChannelNum, isDeleted, FavTag, FavTag2 FROM FavoriteItem JOIN"
    " Service s ON s.Pid = ServiceId ORDER BY 1, 3, 2";

TEST_F(ToolTest, TakesBackWhatEachCommandWrote) {
    write("channels", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\n");
    write("favourites",
          ":FAV1\nJazz:394:M256:C:6900:0:0:0:0:10:3:8:0\n:FAV2\n:FAV3\n"
          "Das Erste:12604:HC34M2S0:S19.2E:27500:1:1:0:0:10301:1:1019:0\n");
    output("backup old.db");
    change("UPDATE FavoriteItem SET ChannelNum = 9 WHERE FavoriteId = 12");
    std::string const before = rows(kItems);
    char const* const commands[][2] = {
        {"edit FAV1 remove 1 hide 3 move 5 to 2 --renumber", "FAV1"},
        {"edit FAV1 --renumber", "FAV1"},
        {"edit all hide VOX move 6 to 1 --renumber", "all, FAV1, FAV2, FAV3, FAV4"},
        {"edit Astra move 2 to 1", "Astra"},
        {"import --favourites favourites", "FAV1, FAV2, FAV3"},
        {"import channels set.db --force", "the whole database"},
        {"restore old.db", "the whole database"},
    };
    for (auto const& [command, kept] : commands) {
        output(command);
        std::string const after = rows(kItems);
        EXPECT_NE(after, before) << command;
        output("undo --list");
        EXPECT_THAT(out.substr(out.rfind('\n', out.size() - 2)), HasSubstr(kept)) << command;
        output("undo --dry-run");
        EXPECT_EQ(rows(kItems), after);
        output("undo");
        EXPECT_THAT(out, HasSubstr("Written, and flushed to the disk")) << command;
        EXPECT_EQ(rows(kItems), before) << command;
        output("undo");
        EXPECT_EQ(rows(kItems), after) << command << ": the second takes back the first";
        output("undo");
    }
    EXPECT_EQ(rows(kItems), before);
}

TEST_F(ToolTest, KeepsTheLastTenAndNothingOfWhatFailed) {
    expect({"undo", 1, nullptr, "there is nothing to undo"});
    expect({"undo --list", 0, "Nothing is kept of this database.", nullptr});
    output("edit FAV1 move 1 to 9 --no-undo");
    output("edit FAV1 move 2 to 2");
    change("CREATE TRIGGER t BEFORE UPDATE ON FavoriteItem BEGIN SELECT RAISE(ABORT, 'no'); END");
    output("edit FAV1 hide 2", 1);
    change("DROP TRIGGER t");
    expect({"undo --list", 0, "Nothing is kept of this database.", nullptr});
    fs::create_symlink("set.db", folder / "link.db");
    for (int number = 10; number < 22; ++number)
        ASSERT_EQ(run("edit --db link.db FAV1 move VOX to " + std::to_string(number)), 0) << err;
    output("undo --list");
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 12);
    EXPECT_THAT(out, HasSubstr("\n 3  "));
    expect({"undo 2", 1, nullptr, "there is no kept copy '2'"});
    output("undo 4");
    EXPECT_THAT(fav(1), HasSubstr("12 3"));
    output("edit FAV1 remove VOX", 0);
    change("DELETE FROM Service WHERE Pid = 3");
    expect({"undo", 0, "Nothing to change.", "FAV1: VOX is left out: no service fits 'VOX'"});
}

TEST_F(ToolTest, WritesWhereNothingCanBeKept) {
    for (char const* place : {"/proc", "/dev/null"}) {
        ASSERT_EQ(
            run("--db set.db edit FAV1 move VOX to 7", std::string("XDG_STATE_HOME=") + place), 0);
        EXPECT_THAT(err, HasSubstr("\"undo\" will not know of this: cannot "));
        EXPECT_THAT(fav(1), HasSubstr("7 3"));
        output("edit FAV1 move VOX to 3 --no-undo");
    }
}

}  // namespace
