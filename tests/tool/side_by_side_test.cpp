// Several processes that edit one list at once: nothing that the tool has reported is lost.
#include <sys/wait.h>

#include <atomic>
#include <map>
#include <random>
#include <sstream>
#include <thread>

#include "tool_process.h"

namespace {

constexpr int kEditors = 3;
constexpr int kServicesEach = 8;
constexpr int kOperations = 20;
#ifdef __SANITIZE_ADDRESS__
constexpr int kReported = 1000;  // which is slow
#else
constexpr int kReported = 10000;  // operations of all editors
#endif

// One of them: it adds, removes, hides, restores and moves services that no other one touches, in
// edits of twenty operations, and looks after each whether they are as it was told.
class Editor {
  public:
    Editor(std::string folder, int first)
        : folder_(std::move(folder)), random_(static_cast<unsigned>(first)) {
        for (int id = first; id < first + kServicesEach; ++id)
            states_[id] = "";
    }

    void work(std::atomic<int>& reported) {
        while (reported < kReported && wrong.empty() && refused < kReported) {
            std::map<int, std::string> const before = states_;
            std::string const operations = chooseOperations();
            int const code = run(operations);
            if (code == 0)
                reported += kOperations;
            else
                states_ = before;
            refused += code != 0;
            if (std::string const stored = storedStates(); stored != text(states_))
                wrong = operations + "\nreported: " + text(states_) + "\nstored:   " + stored;
        }
    }

    std::string wrong;
    int refused = 0;

  private:
    std::string chooseOperations() {
        std::string operations;
        for (int i = 0; i < kOperations; ++i) {
            auto const chosen = std::next(states_.begin(), pick(kServicesEach));
            std::string const service = " id:" + std::to_string(chosen->first);
            std::string& state = chosen->second;
            std::string const number = std::to_string(1 + pick(30));
            int const kind = pick(4);
            if (state.empty()) {
                operations += " add" + service + (kind < 2 ? " at " + number : "");
                state = "shown";
            } else if (kind == 0) {
                operations += " remove" + service;
                state.clear();
            } else if (kind == 1 || state == "hidden") {
                operations += (state == "hidden" ? " restore" : " hide") + service;
                state = state == "hidden" ? "shown" : "hidden";
            } else {
                operations += " move" + service + " to " + number;
            }
        }
        return operations;
    }

    int pick(int most) { return std::uniform_int_distribution<int>(0, most - 1)(random_); }

    int run(std::string const& operations) const {
        int const status = std::system(("cd '" + folder_ +
                                        "' && PATH=$PWD/bin:$PATH HOME=$PWD " TOOL
                                        " --db set.db edit --no-undo FAV1" +
                                        operations + " >/dev/null 2>&1")
                                           .c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    static std::string text(std::map<int, std::string> const& states) {
        std::string text;
        for (auto const& [id, state] : states)
            if (!state.empty())
                text += std::to_string(id) + " " + state + ";";
        return text;
    }

    std::string storedStates() const {
        sqlite3* connection = nullptr;
        sqlite3_open((folder_ + "/set.db").c_str(), &connection);
        sqlite3_busy_timeout(connection, 60000);
        std::string const range = " BETWEEN " + std::to_string(states_.begin()->first) + " AND " +
                                  std::to_string(states_.rbegin()->first);
        std::string stored;
        sqlite3_exec(
            connection,
            ("SELECT ServiceId || CASE isDeleted WHEN 0 THEN ' shown;' ELSE ' hidden;' END"
             " FROM FavoriteItem WHERE FavoriteId = 11 AND ServiceId" +
             range + " ORDER BY ServiceId")
                .c_str(),
            [](void* text, int, char** values, char**) {
                *static_cast<std::string*>(text) += values[0];
                return 0;
            },
            &stored, nullptr);
        sqlite3_close(connection);
        return stored;
    }

    std::string folder_;
    std::mt19937 random_;
    std::map<int, std::string> states_;  // "shown", "hidden", "" where it is not in the list
};

class SideBySide : public ToolTest, public testing::WithParamInterface<char const*> {};

TEST_P(SideBySide, LosesNothingThatWasReported) {
    {
        channel_database::ChannelDatabase database((folder / "set.db").string());
        for (int id = 101; id < 101 + kEditors * kServicesEach; ++id) {
            std::string const name = "S" + std::to_string(id);
            database.run(
                "INSERT INTO FavoriteItem (ServiceId, FavoriteId, ChannelNum) VALUES"
                " (?, 1, ?)",
                {database.dvbs(name, id).triplet(1, 1, id), id});
        }
    }
    rows(std::string("PRAGMA journal_mode = ") + GetParam());
    std::atomic<int> reported{0};
    std::vector<Editor> editors;
    for (int i = 0; i < kEditors; ++i)
        editors.emplace_back(folder.string(), 101 + i * kServicesEach);
    std::vector<std::thread> threads;
    for (Editor& editor : editors)
        threads.emplace_back([&] { editor.work(reported); });
    for (std::thread& thread : threads)
        thread.join();
    for (Editor const& editor : editors)
        EXPECT_EQ(editor.wrong, "");
    EXPECT_GE(reported, kReported);
    RecordProperty("reported", reported);
    std::printf("%8d changes of editors side by side\n", reported.load());
}

// Ten seconds are waited, and what then is not known cannot be brought back.
TEST_F(ToolTest, RestoresNothingIntoAFileThatAnotherHolds) {
    output("backup old.db");
    output("edit FAV1 remove VOX");
    {
        channel_database::ChannelDatabase other((folder / "set.db").string());
        other.rows("BEGIN EXCLUSIVE");
        for (char const* const command : {"restore old.db", "restore old.db --no-undo"})
            expect({command, 1, nullptr, "cannot read set.db: database is locked"});
    }
    EXPECT_EQ(fav(1), "1 1;2 2;5 5");
    output("undo");
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
}

INSTANTIATE_TEST_SUITE_P(Journals, SideBySide, testing::Values("DELETE", "WAL"),
                         [](auto const& mode) { return std::string(mode.param); });

}  // namespace
