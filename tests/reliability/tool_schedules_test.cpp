// Commands of the tool side by side, in orders that seeds decide, a turn at every lock step: what
// they leave is what those that were reported as written leave one after the other, in some order.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "child_process.h"
#include "entry_points.h"
#include "turns.h"
#include "workshop.h"

namespace {

namespace fs = std::filesystem;

constexpr unsigned kSchedules = 150;  // in each journal mode
constexpr int kRefused = 1;           // the tool's exit code where it writes nothing

using Command = std::vector<std::string>;

Command const kFirst = {"edit", "FAV1", "remove", "id:6"};  // what undo finds
std::vector<Command> const kCommands = {
    {"edit", "FAV1", "add", "id:7"},
    {"edit", "FAV1", "add", "id:8", "at", "2"},
    {"edit", "FAV1", "move", "id:3", "to", "1"},
    {"edit", "FAV1", "hide", "id:4"},
    {"edit", "FAV1", "remove", "id:5"},
    {"edit", "FAV2", "move", "id:2", "to", "5"},
    {"edit", "all", "hide", "id:2"},
    {"undo"},
};

struct Found {
    std::string entries, numbers;
};

constexpr char kHeld[] =
    "SELECT ServiceId FROM FavoriteItem WHERE FavoriteId ="
    " (SELECT Pid FROM FavoriteList WHERE Uuid = 'list-of-favourites-1')";

class ToolSchedules : public testing::TestWithParam<Journal> {
  protected:
    ToolSchedules() {
        renew();
        runAlone(kFirst);
        fs::copy(state_, state_ + ".made", fs::copy_options::recursive);
    }
    ~ToolSchedules() override {
        fs::remove_all(state_);
        fs::remove_all(state_ + ".made");
    }

    void renew() {
        workshop_.renew();
        fs::remove_all(state_);
        if (!fs::exists(state_ + ".made"))
            return;
        runAlone(kFirst);  // the copies that it keeps are those of before
        fs::remove_all(state_);
        fs::copy(state_ + ".made", state_, fs::copy_options::recursive);
    }

    [[noreturn]] void become(Command const& command) const {
        setenv("XDG_STATE_HOME", state_.c_str(), 1);
        int const said =
            open((workshop_.file() + ".said").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(said, STDOUT_FILENO);
        dup2(said, STDERR_FILENO);
        std::vector<char const*> words = {TOOL, "--db", workshop_.file().c_str()};
        for (std::string const& word : command)
            words.push_back(word.c_str());
        words.push_back(nullptr);
        execv(TOOL, const_cast<char* const*>(words.data()));
        _exit(127);
    }

    static int codeOf(pid_t child) {
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    int runAlone(Command const& command) const {
        return codeOf(startChild([&] { become(command); }));
    }

    // The exit codes, by seat.
    std::vector<int> runTogether(std::vector<Command> const& commands, unsigned seed) {
        auto const seats = static_cast<unsigned>(commands.size());
        table_.renew(seats, seed);
        std::vector<pid_t> children;
        for (unsigned seat = 0; seat < seats; ++seat)
            children.push_back(startChild([&] {
                setenv("LD_PRELOAD", TURNS, 1);
                setenv("TURNS_TABLE", table_.file().c_str(), 1);
                setenv("TURNS_SEAT", std::to_string(seat).c_str(), 1);
                become(commands[seat]);
            }));
        std::vector<int> codes;
        for (pid_t const child : children)
            codes.push_back(codeOf(child));
        return codes;
    }

    Found lists() const {
        return {workshop_.rows("SELECT FavoriteId, ServiceId, isDeleted FROM FavoriteItem"
                               " ORDER BY FavoriteId, ServiceId;"
                               " SELECT Pid, FavTag, FavTag2 FROM Service ORDER BY Pid"),
                workshop_.rows("SELECT FavoriteId, ServiceId, ChannelNum FROM FavoriteItem"
                               " ORDER BY FavoriteId, ServiceId, ChannelNum")};
    }

    // What the commands leave one after the other.
    Found const& serial(std::vector<Command> const& commands) {
        Found& result = serial_[commands];
        if (!result.entries.empty())
            return result;
        renew();
        for (Command const& command : commands)
            runAlone(command);
        return result = lists();
    }

    bool isPermuted(std::vector<Command> reported, Found const& found, bool withNumbers) {
        std::sort(reported.begin(), reported.end());
        do {
            if (serial(reported).entries == found.entries &&
                (!withNumbers || serial(reported).numbers == found.numbers))
                return true;
        } while (std::next_permutation(reported.begin(), reported.end()));
        return false;
    }

    // An undo takes back the edit that was the last one when it began, as it says: by now it may be
    // an older one. What it brings back finds its number among those that are taken by then.
    bool isSerial(std::vector<Command> reported, Found const& found) {
        auto const undo = std::find(reported.begin(), reported.end(), Command{"undo"});
        if (undo == reported.end())
            return isPermuted(reported, found, true);
        bool result = isPermuted(reported, found, false);
        for (char const* const older : {"2", "3"}) {
            *undo = {"undo", older};
            result = result || isPermuted(reported, found, false);
        }
        return result;
    }

    std::string said() const {
        std::ostringstream text;
        text << std::ifstream(workshop_.file() + ".said").rdbuf();
        return text.str();
    }

    Workshop workshop_{GetParam()};
    std::string state_ = workshop_.file() + ".state";
    turns::Table table_{2, 0};
    std::map<std::vector<Command>, Found> serial_;
};

TEST_P(ToolSchedules, EveryReportedCommandIsInSomeSerialOrder) {
    unsigned refused = 0, turns = 0;
    for (unsigned seed = 1; seed <= kSchedules && !HasFailure(); ++seed) {
        std::mt19937 random(seed);
        std::vector<Command> commands(2 + random() % 2), reported;
        for (Command& command : commands)
            command = kCommands[random() % kCommands.size()];
        renew();
        fs::remove(workshop_.file() + ".said");
        std::vector<int> const codes = runTogether(commands, seed);
        for (std::size_t i = 0; i < codes.size(); ++i) {
            EXPECT_LE(codes[i], kRefused) << "seed " << seed << ": " << said();
            if (codes[i] == 0)
                reported.push_back(commands[i]);
            refused += codes[i] == kRefused ? 1 : 0;
        }
        turns += table_.turns();
        Found const found = lists();
        std::string const text = said();
        EXPECT_TRUE(isSerial(reported, found)) << "seed " << seed << ": " << text;
    }
    std::printf("figure: %u turns of %u schedules of the tool's commands\n", turns, kSchedules);
    std::printf("figure: %u commands refused in schedules of the tool's commands\n", refused);
}

// The control: a program that reads a list and writes it whole, as nobody else wrote.
TEST_P(ToolSchedules, FindsAnEditorThatDoesNotLookAgain) {
    unsigned losses = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        renew();
        table_.renew(2, seed);
        std::vector<int> seen;
        std::istringstream held(workshop_.rows(kHeld));
        char bar = 0;
        for (int service = 0; held >> service >> bar;)
            seen.push_back(service);
        std::vector<pid_t> children;
        for (int seat = 0; seat < 2; ++seat)
            children.push_back(startChild([&] {
                turns::Seat const sitting = table_.sit(static_cast<unsigned>(seat));
                std::vector<int> services = seen;
                services.push_back(7 + seat);
                dbaccess::onServiceListEdit(edit("list-of-favourites-1", services, 1));
            }));
        for (pid_t const child : children)
            endOf(child);
        std::string const now = workshop_.rows(kHeld);
        bool const holdsBoth =
            now.find("7|") != std::string::npos && now.find("8|") != std::string::npos;
        losses += holdsBoth ? 0 : 1;
    }
    EXPECT_GT(losses, 0U);
    std::printf("figure: %u losses of an editor that does not look again\n", losses);
}

INSTANTIATE_TEST_SUITE_P(Journals, ToolSchedules, testing::Values(Journal::Rollback, Journal::Wal),
                         testing::PrintToStringParamName());

}  // namespace
