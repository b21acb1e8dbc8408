// watch: what it tells while a database is edited, locked, replaced and away.
#include <sqlite3.h>

#include <chrono>
#include <thread>

#include "tool_process.h"

using testing::HasSubstr;

namespace {

class WatchTest : public ToolTest {
  protected:
    ~WatchTest() override {
        shell(
            "[ ! -f pid ] || kill $(cat pid) 2>/dev/null;"
            "while [ -f pid ] && [ ! -f code ]; do sleep 0.05; done");
    }

    int shell(std::string const& command) {
        return std::system(("cd '" + folder.string() + "' && " + command).c_str());
    }

    // What it writes is in "told" and "notes", its exit code at the end in "code".
    void start(std::string const& arguments) {
        shell("{ HOME=. " TOOL " --db set.db watch " + arguments +
              " >told 2>notes & echo $! >pid; wait $!; echo $? >code; } &");
        await("notes", "(Ctrl-C to stop)");
    }

    void await(std::string const& file, std::string const& text) {
        for (int tries = 0; tries < 400 && !has(file, text); ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_THAT(content(file), HasSubstr(text));
    }

    bool has(std::string const& file, std::string const& text) {
        return std::filesystem::exists(folder / file) &&
               content(file).find(text) != std::string::npos;
    }
};

TEST_F(WatchTest, TellsWhatHappensToTheDatabase) {
    start("FAV1 FAV2");
    struct {
        char const* happens;  // a command of the tool, or SQL
        char const* told;     // behind the time
    } const steps[] = {
        {"edit FAV1 add 'テレビ東京'", " FAV1: 6 テレビ東京 added\n"},
        {"edit FAV1 hide VOX", " FAV1: 3 VOX hidden\n"},
        {"edit FAV1 restore VOX move VOX to 9", " FAV1: 9 VOX moved from 3, restored\n"},
        {"edit FAV1 remove VOX", " FAV1: 9 VOX removed\n"},
        {"edit all hide 'Das Erste'", " FAV1: 1 Das Erste hidden\n"},
        {"UPDATE FavoriteItem SET ChannelNum = 7 WHERE FavoriteId = 12", " FAV2: 7 VOX moved"},
        {"UPDATE Service SET Uuid = 'else', Name = 'Else' WHERE Pid = 1", " FAV1: 1 Else added"},
    };
    for (auto const& step : steps) {
        SCOPED_TRACE(step.happens);
        std::string const words = step.happens;
        words.compare(0, 4, "edit") == 0 ? void(output(words)) : change(words);
        await("told", step.told);
    }

    shell("mv set.db away.db");
    await("notes", "there is no database set.db; waiting for it");
    shell(TOOL " --db away.db edit FAV2 remove VOX --no-undo >out2 2>&1; mv away.db set.db");
    await("told", " FAV2: 7 VOX removed\n");
    await("notes", "set.db is back");
    output("backup copy.db");
    shell(TOOL " --db copy.db edit FAV2 add Jazz --no-undo >out2 2>&1; mv copy.db set.db");
    await("told", " FAV2: 1 Jazz added\n");

    sqlite3* owner = nullptr;
    sqlite3_open((folder / "set.db").c_str(), &owner);
    sqlite3_exec(owner, "BEGIN EXCLUSIVE; DELETE FROM FavoriteItem WHERE FavoriteId = 12", nullptr,
                 nullptr, nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    EXPECT_FALSE(has("told", "Jazz removed"));
    sqlite3_exec(owner, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(owner);
    await("told", " FAV2: 1 Jazz removed\n");

    shell("kill $(cat pid)");
    await("code", "0\n");
}

TEST_F(WatchTest, EndsWhenNobodyReads) {
    // The reader takes one line and goes.
    shell("{ " TOOL " --db set.db watch FAV1 --json 2>notes; echo $? >code; } | head -n 1 >told &");
    await("notes", "(Ctrl-C to stop)");
    output("edit FAV1 move 1 to 9");
    await("code", "0\n");
    EXPECT_THAT(content("told"),
                HasSubstr("\"list\":\"FAV1\",\"change\":[\"moved\"],\"before\":1,\"after\":9,"
                          "\"name\":\"Das Erste\",\"id\":1,\"cause\":null}\n"));
    // Of a full disk it says so.
    shell("{ { for n in 7 8 9 10 11 12; do sleep 0.3; " TOOL
          " --db set.db edit FAV1 move VOX to $n --no-undo >out2; done; } & timeout 20 " TOOL
          " --db set.db watch FAV1 >/dev/full 2>notes; echo $? >code; wait; }");
    EXPECT_EQ(content("code"), "1\n");
    EXPECT_THAT(content("notes"), HasSubstr("the output could not be written"));
    EXPECT_EQ(run("watch FAV9 --db set.db"), 1);
    EXPECT_EQ(run("watch --db none.db"), 1);
}

}  // namespace
