// undo: every command that writes, taken back.
#include <fstream>

#include "tool_process.h"

namespace fs = std::filesystem;
using channel_database::ChannelDatabase;
using testing::HasSubstr;

namespace {

constexpr char kItems[] =
    "SELECT FavoriteId, ServiceId, ChannelNum, isDeleted, FavoriteItem.Visible,"
    " FavoriteItem.Selectable, OriginalFavoriteId, FavTag, FavTag2 FROM FavoriteItem JOIN"
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
        output("undo --redo");
        EXPECT_EQ(rows(kItems), after) << command << ": done again";
        output("undo");
    }
    EXPECT_EQ(rows(kItems), before);
}

TEST_F(ToolTest, GoesOneFurtherBackEachTime) {
    for (char const* command : {"remove VOX", "move 2 to 9", "hide 1"})
        output(std::string("edit FAV1 ") + command);
    expect({"undo --redo", 1, nullptr, "nothing is taken back: there is nothing to do again"});
    std::string const third = fav(1);
    output("undo");
    std::string const second = fav(1);
    output("undo");
    std::string const first = fav(1);
    output("undo");
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
    expect({"undo", 1, nullptr, "all that is kept is taken back already; --redo does the last"});
    EXPECT_THAT(output("undo --list"), HasSubstr("undone  FAV1"));
    for (std::string const& state : {first, second, third}) {
        output("undo --redo");
        EXPECT_EQ(fav(1), state);
    }
    expect({"undo --redo", 1, nullptr, "nothing is taken back"});
    output("undo 1");
    EXPECT_THAT(fav(1), HasSubstr("3 3")) << "alone, and what came later stays";
    EXPECT_THAT(fav(1), HasSubstr("9 2"));
    expect({"undo 1", 1, nullptr, "copy 1 is taken back already"});
    expect({"undo -- ''", 1, nullptr, "there is no kept copy ''"});
}

TEST_F(ToolTest, TakesBackItsOwnChangesAndKeepsThoseOfOthers) {
    struct {
        char const* command;
        char const* others;  // what they do then
        char const* conflict;
        char const* after;  // of the undo, of --force where there is a conflict
    } const cases[] = {
        {"remove VOX",
         "UPDATE FavoriteItem SET isDeleted = 1 WHERE FavoriteId = 11 AND ServiceId ="
         " 2",
         nullptr, "1 1;2 2 deleted;3 3;5 5"},
        {"move VOX to 9", "DELETE FROM FavoriteItem WHERE FavoriteId = 11 AND ServiceId = 5",
         nullptr, "1 1;2 2;3 3"},
        {"move VOX to 9",
         "UPDATE FavoriteItem SET ChannelNum = 7 WHERE FavoriteId = 11 AND"
         " ServiceId = 3",
         "FAV1: VOX: moved to 7 since; it would be moved to 3", "1 1;2 2;3 3;5 5"},
        {"hide VOX", "DELETE FROM FavoriteItem WHERE FavoriteId = 11 AND ServiceId = 3",
         "FAV1: VOX: removed since; it would be restored", "1 1;2 2;3 3;5 5"},
    };
    fs::copy_file(folder / "set.db", folder / "fresh");
    for (auto const& each : cases) {
        fs::copy_file(folder / "fresh", folder / "set.db", fs::copy_options::overwrite_existing);
        output(std::string("edit FAV1 ") + each.command);
        change(each.others);
        std::string const before = fav(1);
        if (each.conflict != nullptr) {
            expect({"undo", 1, "Taking back", each.conflict});
            EXPECT_THAT(err, HasSubstr("nothing is written; --force"));
            EXPECT_EQ(fav(1), before);
        }
        output(each.conflict == nullptr ? "undo" : "undo --force");
        EXPECT_EQ(fav(1), each.after) << each.command << " | " << each.others;
    }
}

// What an edit cannot show, and what its request does not name.
TEST_F(ToolTest, BringsBackAllThatAnEntryWas) {
    change(
        "UPDATE FavoriteItem SET Visible = 0, Selectable = 1, OriginalFavoriteId = 21 WHERE"
        " FavoriteId = 11 AND ServiceId = 3; INSERT INTO FavoriteItem (ServiceId, FavoriteId,"
        " OriginalFavoriteId, ChannelNum, isDeleted, Visible) VALUES (999, 11, 11, 8, 1, 0)");
    constexpr char kAll[] =
        "SELECT ServiceId, ChannelNum, isDeleted, Visible, Selectable, OriginalFavoriteId FROM"
        " FavoriteItem WHERE FavoriteId = 11 ORDER BY 1";
    std::string const before = rows(kAll);
    output("edit FAV1 remove VOX remove Jazz");
    EXPECT_THAT(rows(kAll), testing::Not(HasSubstr("999")));
    output("undo");
    EXPECT_EQ(rows(kAll), before);
    output("edit all hide VOX");  // which drops nothing
    change("DELETE FROM FavoriteItem WHERE ServiceId = 999");
    output("undo");
    EXPECT_THAT(rows(kAll), testing::Not(HasSubstr("999")));
    output("edit FAV1 remove VOX remove Jazz");
    change("DELETE FROM Service WHERE Pid = 3");
    std::string const now = fav(1);
    expect({"undo", 1, "Taking back", "cannot be brought back:\n  FAV1: VOX: no service fits"});
    EXPECT_EQ(fav(1), now);
    output("undo --force", 1);
    EXPECT_THAT(fav(1), HasSubstr("5 5"));
}

// An edit that never was leaves no copy; one that was interrupted behind its commit does.
TEST_F(ToolTest, KnowsNothingOfEditsThatNeverWere) {
    fs::path const kept = folder / ".local/state/channellist";
    output("edit FAV1 move 1 to 9");
    fs::path const copies = kept / fs::canonical(folder / "set.db").relative_path();
    {
        ChannelDatabase other((folder / "set.db").string());
        other.run("BEGIN IMMEDIATE");
        for (auto const& [signal, code] : {std::pair("INT", 2), std::pair("KILL", 9)}) {
            std::string const patience = std::string("timeout --preserve-status -s ") + signal;
            EXPECT_EQ(run("edit --db set.db FAV1 move 2 to 8", patience + " 1"), 128 + code);
        }
    }
    fs::copy_file(copies / "1.json", copies / "7.part");
    output("undo --list");
    EXPECT_THAT(out, HasSubstr("\n 1  "));
    EXPECT_THAT(out, HasSubstr("\n 7  ")) << "the list is another one than before that edit";
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 4);
    std::ofstream(copies / "8.json") << "cut";
    expect({"undo", 1, nullptr, "copy 8 cannot be read, and nothing is taken back"});
    fs::remove(copies / "8.json");
    fs::remove(copies / "7.json");
    std::string const old =
        "{\"time\": \"t\", \"command\": \"edit FAV1\", \"lists\": [{\"uuid\":"
        " \"u-fav1\", \"name\": \"FAV1\", \"entries\": [{\"number\": 4, \"key\": 3,"
        " \"hidden\": false, \"name\": \"VOX\", \"triplet\": \"1-1089-12060\"}]}]}";
    std::ofstream(copies / "9.json") << old;
    expect({"undo", 1, "Taking back", "does not tell what others wrote since"});
    expect({"undo --force", 0, "Written, and flushed", nullptr});
    EXPECT_EQ(fav(1), "4 3");
    output("undo --redo");  // its copy goes, its number does not come again
    output("edit FAV1 hide Jazz");
    EXPECT_TRUE(fs::exists(copies / "11.json"));
    fs::copy_file(copies / "11.json", copies / "12.part");
    fs::remove(folder / "set.db");
    expect({"undo --list", 0, "\n11  ", nullptr});
    expect({"undo", 1, nullptr, "copy 12 cannot be read"});  // nothing tells what became of it
}

TEST_F(ToolTest, TellsWhatGoesWithAWholeDatabase) {
    output("backup old");
    output("edit FAV1 move 1 to 9");
    output("restore old");
    output("edit FAV1 hide VOX");
    expect({"undo 2", 1, "Taking back", "it would take back, too:\n  3  edit FAV1 of "});
    output("undo 2 --force");
    EXPECT_EQ(fav(1), "2 2;3 3;5 5;9 1");
    for (std::string const command : {"restore old", "import --force " SAMPLE_CHANNELS " set.db"}) {
        output(command);
        expect({"undo", 0, "Taking back", nullptr});
        output(command);
        change("UPDATE Service SET Name = 'new' WHERE Pid = 5");
        expect({"undo", 1, "Taking back", "take back, too:\n  what others wrote to the database"});
        output("undo --force");
        EXPECT_EQ(fav(1), "2 2;3 3;5 5;9 1");
    }
}

TEST_F(ToolTest, GoesOnBeforeWhatWentWithAWholeDatabase) {
    output("backup old");
    output("edit FAV1 move 1 to 9");
    output("restore old");
    output("edit FAV1 remove VOX");
    output("undo 2 --force");  // the removal went with it
    expect({"undo", 0, "Taking back \"edit FAV1\"", nullptr});
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
    output("restore old");
    fs::remove(folder / "set.db");
    output("undo");
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
}

// Others write while the lock is waited for, which a copy of before does not know.
TEST_F(ToolTest, KeepsWhatOthersWroteBeforeTheLock) {
    for (char const* const mode : {"DELETE", "WAL"}) {
        change(std::string("PRAGMA journal_mode = ") + mode);
        output("backup old");
        write("beside",
              "python3 -c 'import sqlite3, time; c = sqlite3.connect(\"set.db\");"
              " c.execute(\"BEGIN IMMEDIATE\"); c.execute(\"UPDATE Service SET Name ="
              " \\\"late\\\" WHERE Pid = 5\"); open(\"held\", \"w\"); time.sleep(1);"
              " c.commit()' & while [ ! -e held ]; do sleep 0.05; done; \"$@\"; wait");
        run("restore old --db set.db", "sh beside");
        EXPECT_THAT(out, HasSubstr("1 services changed"));
        output("undo");
        EXPECT_THAT(output("services all"), HasSubstr("late"));
        output("undo --redo");
        fs::remove(folder / "held");
        fs::remove(folder / "old");
    }
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
    output("undo 4 --force");
    EXPECT_THAT(fav(1), HasSubstr("12 3"));
    output("edit FAV1 remove VOX", 0);
    change("DELETE FROM Service WHERE Pid = 3");
    expect({"undo", 1, "Taking back", "FAV1: VOX: no service fits 'VOX'"});
}

TEST_F(ToolTest, WritesWhereNothingCanBeKept) {
    for (char const* place : {"XDG_STATE_HOME=/proc", "XDG_STATE_HOME=/dev/null", "HOME=."}) {
        ASSERT_EQ(run("--db set.db edit FAV1 move VOX to 7", place), 0);
        EXPECT_THAT(err, HasSubstr("\"undo\" will not know of this: "));
        EXPECT_THAT(fav(1), HasSubstr("7 3"));
        output("edit FAV1 move VOX to 3 --no-undo");
    }
    run("--db set.db edit FAV1 move VOX to 7",
        "sh -c 'trap \"\" XFSZ; exec prlimit --fsize=512 \"$0\" \"$@\"'");
    EXPECT_THAT(err, HasSubstr("1.part: File too large"));
}

// Both wait for the lock; the second finds the edit taken back, and leaves it to --redo and undo.
TEST_F(ToolTest, TakesBackOnceBesideAnotherUndo) {
    output("edit FAV1 move VOX to 7");
    constexpr char kUndo[] = "( \"$@\" --db set.db undo 1 >/dev/null 2>>told; echo $? >>codes ) & ";
    write("two", std::string("python3 -c 'import sqlite3, time; c = sqlite3.connect(\"set.db\");"
                             " c.execute(\"BEGIN IMMEDIATE\"); open(\"held\", \"w\");"
                             " time.sleep(1)' & while [ ! -e held ]; do sleep 0.05; done; ") +
                     kUndo + kUndo + "wait");
    run("", "sh two");
    EXPECT_THAT(content("codes"), testing::AnyOf("0\n1\n", "1\n0\n"));
    EXPECT_THAT(content("told"), HasSubstr("copy 1 was taken back meanwhile"));
    output("undo --redo");
    EXPECT_EQ(fav(1), "1 1;2 2;5 5;7 3");
    output("undo");
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
}

}  // namespace
