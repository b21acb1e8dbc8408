// The power fails at every operation of the tool's commands: what a command has reported as written
// is there, whole, in every file that it wrote.
//
// A failure prints its seed. TOOL_POWER_CUTS=SEED runs with that one.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "power_cut.h"

namespace {

using disk::Files;
namespace fs = std::filesystem;

constexpr unsigned kCuts = 3000;  // in each journal mode

constexpr char kImport[] = "import --force " SAMPLES "/channels.conf @/set.db";
constexpr char kNew[] = "import " SAMPLES "/favourites.conf @/new.db";

// Each is one transaction on one file, and has ended before the next begins. @: the directory.
std::vector<std::string> const kCommands = {
    "--db @/set.db edit FAV1 move 3 to 1",
    "--db @/set.db backup @/copy.db",
    "--db @/set.db edit all hide 2",
    "--db @/set.db undo",
    "--db @/set.db edit FAV2 remove 1 add 'KiKA HD'",
    "--db @/set.db restore @/copy.db",
    "--db @/set.db undo",
    kImport,
    kNew,
    "--db @/set.db undo",
};

int append(void* text, int count, char** values, char**) {
    for (int i = 0; i < count; ++i)
        *static_cast<std::string*>(text) += std::string(values[i] ? values[i] : "NULL") + '|';
    return 0;
}

std::string read(sqlite3* connection, std::string const& sql) {
    std::string text;
    if (sqlite3_exec(connection, sql.c_str(), append, &text, nullptr) != SQLITE_OK)
        text += sqlite3_errmsg(connection);
    return text;
}

// All rows of all tables, but for the update tags, which may be ahead of the edit that they
// announce.
std::string contentOf(std::string const& file) {
    sqlite3* connection = nullptr;
    sqlite3_open_v2(file.c_str(), &connection, SQLITE_OPEN_READWRITE, "unix");
    std::string content = read(connection,
                               "PRAGMA synchronous = OFF; PRAGMA integrity_check;"
                               " UPDATE FavoriteList SET UpdateTag = 0");
    std::string const tables =
        read(connection, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
    for (std::size_t begin = 0; begin < tables.size();) {
        std::size_t const end = std::min(tables.find('|', begin), tables.size());
        content += read(connection, "SELECT * FROM \"" + tables.substr(begin, end - begin) +
                                        "\" ORDER BY rowid");
        begin = end + 1;
    }
    sqlite3_close(connection);
    return content;
}

class ToolPowerCuts : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        std::string root = "/dev/shm/tool-cuts-XXXXXX";
        ASSERT_NE(mkdtemp(root.data()), nullptr);
        root_ = root;
        directory_ = root + "/set";
        scratch_ = root + "/scratch";
        fs::create_directories(directory_);
        fs::create_directories(scratch_);
        ASSERT_EQ(run("", MAKER " " SAMPLES "/favourites.conf @/set.db"), 0);
        sqlite3* connection = nullptr;
        sqlite3_open((directory_ + "/set.db").c_str(), &connection);
        read(connection, "PRAGMA journal_mode = " + GetParam());
        sqlite3_close(connection);
        made_ = disk::filesIn(directory_);
        recordCommands();
    }
    void TearDown() override { fs::remove_all(root_); }

    int run(std::string const& environment, std::string command) const {
        for (std::size_t at; (at = command.find('@')) != std::string::npos;)
            command.replace(at, 1, directory_);
        return std::system(("XDG_STATE_HOME=" + root_.string() + "/state " + environment + command +
                            " >" + root_.string() + "/said 2>&1 </dev/null")
                               .c_str());
    }

    void recordCommands() {
        std::string const log = root_.string() + "/log";
        std::string const recorded =
            "LD_PRELOAD=" RECORDER " DISK_DIRECTORY=" + directory_ + " DISK_LOG=" + log + " ";
        right_.push_back(contents(made_));
        for (std::string const& command : kCommands) {
            ASSERT_EQ(run(recorded, TOOL " " + command), 0)
                << command << ": " << disk::filesIn(root_)["said"];
            disk::report(log, command);
            right_.push_back(contents(disk::filesIn(directory_)));
            EXPECT_NE(right_.back(), right_[right_.size() - 2]) << command << " writes nothing";
        }
        operations_ = disk::operationsOf(log);
    }

    std::map<std::string, std::string> contents(Files const& files) const {
        disk::putFiles(scratch_, files);
        std::map<std::string, std::string> all;
        for (auto const& [name, bytes] : files)
            if (fs::path(name).extension() == ".db")
                all[name] = contentOf(scratch_ + "/" + name);
        return all;
    }

    // A file that nobody was told of yet may be anything.
    std::string wrong(Files const& files, std::size_t done) {
        auto const now = contents(files);
        auto const& next = right_[std::min(done + 1, kCommands.size())];
        for (auto const& [name, content] : right_[done]) {
            auto const found = now.find(name);
            if (found == now.end())
                return name + " is gone after " + std::to_string(done) + " commands";
            if (found->second != content && found->second != next.at(name))
                return name + " is neither that of command " + std::to_string(done) +
                       " nor of the next: " + found->second.substr(0, 200);
        }
        return "";
    }

    disk::Outcome cut(unsigned cuts, bool withFlushes) {
        return disk::cutEverywhere(
            {made_, operations_}, cuts, withFlushes, disk::seedOf("TOOL_POWER_CUTS"),
            [this](Files const& files, std::size_t done) { return wrong(files, done); });
    }

    fs::path root_;
    std::string directory_, scratch_;
    Files made_;
    std::vector<std::map<std::string, std::string>> right_;  // after so many commands, by file
    std::vector<disk::Operation> operations_;
};

TEST_P(ToolPowerCuts, LoseNothingThatACommandHasReported) {
    disk::Outcome const outcome = cut(kCuts, true);
    EXPECT_EQ(outcome.firstFault, "") << outcome.faults << " faults";
    std::printf("figure: %u power cuts of the tool's commands, %s\n", outcome.cuts,
                GetParam().c_str());
    std::printf("figure: %zu different disks after them\n", outcome.disks);
}

// The control.
TEST_P(ToolPowerCuts, FindCommandsThatDoNotFlush) {
    disk::Outcome const outcome = cut(500, false);
    EXPECT_GT(outcome.faults, 0U);
    std::printf("figure: %u faults found in %u power cuts of the tool without flushes\n",
                outcome.faults, outcome.cuts);
}

INSTANTIATE_TEST_SUITE_P(Journals, ToolPowerCuts, testing::Values("DELETE", "WAL"),
                         [](auto const& journal) { return journal.param; });

}  // namespace
