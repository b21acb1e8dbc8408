// "channellist watch" beside an editor, in orders that seeds decide, a turn at every lock step:
// what it tells leads from the lists as it found them to the lists as they are. A change that was
// missed, or told twice, does not. Beside it a watcher that reads first and notes the version then,
// which has to lose changes here.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "child_process.h"
#include "entry_points.h"
#include "turns.h"
#include "workshop.h"

namespace {

using Json = nlohmann::json;

constexpr unsigned kRounds = 25;  // in each journal mode
constexpr unsigned kBursts = 20;  // of edits in each round
constexpr unsigned kEdits = 10;   // in each burst
constexpr int kFavLists = 4;

// Per list, by service: number and whether it is hidden.
using Lists = std::map<std::string, std::map<int, std::pair<int, bool>>>;

// Waits for whoever writes just now.
class Reader {
  public:
    explicit Reader(std::string const& file) {
        sqlite3_open_v2(file.c_str(), &connection_, SQLITE_OPEN_READWRITE, "unix");
        sqlite3_busy_timeout(connection_, 5000);
    }
    ~Reader() { sqlite3_close(connection_); }
    Reader(Reader const&) = delete;
    Reader& operator=(Reader const&) = delete;

    Lists lists() const {
        Lists lists = {{"FAV1", {}}, {"FAV2", {}}, {"FAV3", {}}, {"FAV4", {}}};
        run(
            "SELECT 'FAV' || substr(Uuid, -1), ServiceId, ChannelNum, isDeleted FROM FavoriteItem"
            " JOIN FavoriteList ON Pid = FavoriteId WHERE Uuid LIKE 'list-of-favourites-%'",
            [](void* all, int, char** row, char**) {
                (*static_cast<Lists*>(all))[row[0]][std::atoi(row[1])] = {std::atoi(row[2]),
                                                                          *row[3] != '0'};
                return 0;
            },
            &lists);
        return lists;
    }

    int version() const {
        int version = 0;
        run(
            "PRAGMA data_version",
            [](void* number, int, char** row, char**) {
                *static_cast<int*>(number) = std::atoi(row[0]);
                return 0;
            },
            &version);
        return version;
    }

  private:
    void run(char const* sql, sqlite3_callback take, void* result) const {
        EXPECT_EQ(sqlite3_exec(connection_, sql, take, result, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection_);
    }

    sqlite3* connection_ = nullptr;
};

// False when the event does not fit what was told before.
bool fits(Json const& event, Lists& lists) {
    auto& entries = lists[event["list"]];
    int const service = event["id"];
    auto const entry = entries.find(service);
    if (entry == entries.end() ? !event["before"].is_null()
                               : event["before"] != entry->second.first)
        return false;
    if (event["after"].is_null())
        return entry != entries.end() && entries.erase(service) == 1;
    bool isHidden = entry != entries.end() && entry->second.second;
    for (std::string const word : event["change"])
        isHidden = word == "hidden" || (isHidden && word != "restored");
    entries[service] = {event["after"], isHidden};
    return true;
}

// What a watcher tells, in whole lines.
class Told {
  public:
    Told(std::string const& file, Lists lists) : lines_(file), lists_(std::move(lists)) {}

    // The lists to which all leads by now. A line that does not fit what was told before is kept.
    Lists const& lists() {
        lines_.clear();
        for (std::string part; std::getline(lines_, part);) {
            line_ += part;
            if (lines_.eof())
                break;
            if (wrong_.empty() && !fits(Json::parse(line_), lists_))
                wrong_ = line_;
            ++count_;
            line_.clear();
        }
        return lists_;
    }
    std::string const& wrong() const { return wrong_; }
    long count() const { return count_; }

  private:
    std::ifstream lines_;
    std::string line_, wrong_;
    Lists lists_;
    long count_ = 0;
};

// A sleep of the scheduler for who takes part, else a real one.
void rest() {
    timespec const time = {0, 50000000};
    nanosleep(&time, nullptr);
}

void editAtRandom(std::mt19937& random) {
    auto const below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    std::vector<int> services = allServices();
    for (unsigned i = 0; i < kEdits; ++i) {
        std::shuffle(services.begin(), services.end(), random);
        std::vector<int> const chosen(services.begin(), services.begin() + below(6));
        std::string const list = "list-of-favourites-" + std::to_string(below(kFavLists) + 1);
        int const result = dbaccess::onServiceListEdit(edit(list, chosen, 1 + below(3), below(2)));
        EXPECT_GE(result, 0);
    }
}

struct Counts {
    long events = 0;
    unsigned losses = 0;  // bursts behind which what was told never led to the lists
};

class WatchTest : public testing::TestWithParam<Journal> {
  public:
    void watchWithTheTool() {
        setenv("LD_PRELOAD", TURNS, 1);
        setenv("TURNS_TABLE", table_.file().c_str(), 1);
        setenv("TURNS_SEAT", "0", 1);
        dup2(open(told_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        dup2(open(notes_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        execl(TOOL, TOOL, "--db", workshop_.file().c_str(), "watch", "FAV1", "FAV2", "FAV3", "FAV4",
              "--json", nullptr);
        _exit(1);
    }

    // What is committed between the lists and the version is taken for seen.
    void watchInTheWrongOrder() {
        turns::Seat const seat = table_.sit(0);
        Reader const reader(workshop_.file());
        std::ofstream events(told_);
        Lists shown = reader.lists();
        int seen = reader.version();
        std::ofstream(notes_) << "watching\n";
        for (; !HasFailure(); rest()) {
            if (reader.version() == seen)
                continue;
            Lists const now = reader.lists();
            seen = reader.version();
            for (auto const& [list, entries] : shown)
                for (auto const& [service, entry] : entries)
                    print(events, {{"list", list}, {"id", service}, {"before", entry.first}});
            for (auto const& [list, entries] : now)
                for (auto const& [service, entry] : entries)
                    print(events, {{"list", list},
                                   {"id", service},
                                   {"after", entry.first},
                                   {"change", {entry.second ? "hidden" : "added"}}});
            shown = now;
        }
    }

    static void print(std::ostream& out, Json event) {
        for (char const* const number : {"before", "after"})
            event.emplace(number, nullptr);
        out << event.dump() + "\n" << std::flush;
    }

    // Begins once the watcher has seen the lists, and looks behind each burst what it told.
    void editAndLook(unsigned seed, Lists const& atFirst) {
        turns::Seat const seat = table_.sit(1);
        while (!std::filesystem::exists(notes_) || std::filesystem::file_size(notes_) == 0)
            rest();
        std::mt19937 random(seed);
        Reader const reader(workshop_.file());
        Told told(told_, atFirst);
        for (unsigned burst = 0; burst < kBursts; ++burst) {
            editAtRandom(random);
            Lists const lists = reader.lists();
            int tries = 0;
            while (told.lists() != lists && ++tries < kPatience)
                rest();
            counts_.losses += tries == kPatience ? 1 : 0;
        }
        EXPECT_EQ(told.wrong(), "");
        counts_.events += told.count();
    }

    void play(unsigned seed, void (WatchTest::*watch)()) {
        workshop_.renew();
        std::filesystem::remove(notes_);
        std::filesystem::remove(told_);
        table_.renew(2, seed);
        Lists const atFirst = Reader(workshop_.file()).lists();
        pid_t const watcher = startChild([&] { (this->*watch)(); });
        EXPECT_EQ(endOf(startChild([&] { editAndLook(seed, atFirst); })), 0);
        kill(watcher, SIGTERM);
        endOf(watcher);
    }

    void report(std::string const& watcher, unsigned rounds) const {
        std::printf("figure: %u edits beside %s\n", rounds * kBursts * kEdits, watcher.c_str());
        std::printf("figure: %ld changes told by %s\n", counts_.events, watcher.c_str());
        std::printf("figure: %u of %u bursts of edits lost by %s\n", counts_.losses,
                    rounds * kBursts, watcher.c_str());
    }

    static constexpr int kPatience = 100;  // rests

    Workshop workshop_{GetParam()};
    std::string told_ = workshop_.file() + ".told", notes_ = workshop_.file() + ".notes";
    turns::Table table_{2, 0};
    Counts& counts_ = sharedValue<Counts>();
};

TEST_P(WatchTest, TellsEveryChangeOnce) {
    for (unsigned seed = 1; seed <= kRounds && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        play(seed, &WatchTest::watchWithTheTool);
        EXPECT_EQ(counts_.losses, 0U);
    }
    report("channellist watch", kRounds);
}

TEST_P(WatchTest, AWatcherThatReadsBeforeTheVersionLoses) {
    constexpr unsigned kFewRounds = 10;
    for (unsigned seed = 1; seed <= kFewRounds; ++seed)
        play(seed, &WatchTest::watchInTheWrongOrder);
    report("a watcher in the wrong order", kFewRounds);
    EXPECT_GT(counts_.losses, 0U);
}

INSTANTIATE_TEST_SUITE_P(Journals, WatchTest, testing::Values(Journal::Rollback, Journal::Wal));

}  // namespace
