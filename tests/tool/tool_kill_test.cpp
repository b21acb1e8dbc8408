// The commands that replace a whole database, killed at each of their writes.
#include <csignal>
#include <cstdio>

#include "tool_process.h"

namespace fs = std::filesystem;

namespace {

struct Replacing {
    char const* journal;
    char const* command;
};

class KilledTool : public ToolTest, public testing::WithParamInterface<Replacing> {
  protected:
    // The database as the next process finds it.
    std::string state(std::string const& file) {
        std::string all = rows("PRAGMA integrity_check", file);
        for (char const* table : {"Service", "DvbService", "Tuner", "FavoriteList", "FavoriteItem"})
            all += "\n" + rows(std::string("SELECT * FROM ") + table, file);
        return all;
    }
    void renew() {
        for (char const* file : {"set.db", "set.db-journal", "set.db-wal", "set.db-shm", ".local"})
            fs::remove_all(folder / file);
        fs::copy_file(folder / "old.db", folder / "set.db");
        fs::copy(folder / "kept", folder / ".local", fs::copy_options::recursive);
    }
    // Whether the command was killed.
    bool runUntil(unsigned write, char const* how) {
        return run(GetParam().command,
                   std::string(how) + " LD_PRELOAD=" KILL_AT " KILL_AT=" + std::to_string(write)) ==
               128 + SIGKILL;
    }
};

TEST_P(KilledTool, LeavesTheOldOrTheNewContentWhole) {
    ASSERT_EQ(run("import " SAMPLE_CHANNELS " other.db"), 0) << err;
    output("backup backup.db");
    // The state in which "undo" has a whole database to bring back.
    ASSERT_EQ(run("restore other.db --db set.db"), 0) << err;
    fs::rename(folder / ".local", folder / "kept");
    std::string const before = state("set.db");
    rows(std::string("PRAGMA journal_mode = ") + GetParam().journal);
    fs::copy_file(folder / "set.db", folder / "old.db");
    renew();
    ASSERT_EQ(run(GetParam().command), 0) << err;
    std::string const after = state("set.db");
    ASSERT_TRUE(before != after);
    unsigned kills = 0;
    for (char const* how : {"", "KILL_HALF=1"}) {
        for (unsigned write = 1; renew(), runUntil(write, how); ++write) {
            ++kills;
            std::string const now = state("set.db");
            ASSERT_TRUE(now == before || now == after) << "killed at write " << write << how;
        }
    }
    EXPECT_TRUE(state("set.db") == after);
    EXPECT_GT(kills, 100U);
    std::printf("figure: %u kills of the tool at a write\n", kills);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, KilledTool,
    testing::Values(Replacing{"delete", "import " SAMPLE_FAVOURITES " set.db --force"},
                    Replacing{"wal", "import " SAMPLE_FAVOURITES " set.db --force"},
                    Replacing{"delete", "restore backup.db --db set.db"},
                    Replacing{"wal", "restore backup.db --db set.db"},
                    Replacing{"delete", "undo --db set.db"}, Replacing{"wal", "undo --db set.db"}),
    [](auto const& test) {
        std::string const command = test.param.command;
        return command.substr(0, command.find(' ')) + "_" + test.param.journal;
    });

}  // namespace
