// "channellist watch" beside an editor, in orders that seeds decide, a turn at every lock step:
// what it tells leads from the lists as it found them to the lists as they are. A change that was
// missed, or told twice, does not.
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
constexpr unsigned kEdits = 200;  // in each round
constexpr int kFavLists = 4;

// Per list, by service: number and whether it is hidden.
using Lists = std::map<std::string, std::map<int, std::pair<int, bool>>>;

std::string bytesOf(std::string const& file) {
    std::ostringstream bytes;
    bytes << std::ifstream(file).rdbuf();
    return bytes.str();
}

Lists listsOf(Workshop const& workshop) {
    Lists lists;
    for (int list = 1; list <= kFavLists; ++list) {
        auto& entries = lists["FAV" + std::to_string(list)];
        std::istringstream rows(workshop.rows(
            ("SELECT ServiceId, ChannelNum, isDeleted FROM FavoriteItem WHERE FavoriteId ="
             " (SELECT Pid FROM FavoriteList WHERE Uuid = 'list-of-favourites-" +
             std::to_string(list) + "')")
                .c_str()));
        int service = 0, number = 0, isDeleted = 0;
        char bar = 0;
        while (rows >> service >> bar >> number >> bar >> isDeleted >> bar)
            entries[service] = {number, isDeleted != 0};
    }
    return lists;
}

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

// What was told in whole lines; why it does not fit, "" when it does.
std::string applyAll(std::string const& told, Lists& lists) {
    std::istringstream lines(told.substr(0, told.rfind('\n') + 1));
    for (std::string line; std::getline(lines, line);)
        if (!fits(Json::parse(line), lists))
            return line;
    return "";
}

// A sleep of the scheduler for who takes part, else a real one.
void rest() {
    timespec const time = {0, 50000000};
    nanosleep(&time, nullptr);
}

void editAtRandom(unsigned seed) {
    std::mt19937 random(seed);
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

class WatchTest : public testing::TestWithParam<Journal> {
  protected:
    void startWatcher() {
        watcher_ = fork();
        ASSERT_GE(watcher_, 0);
        if (watcher_ != 0)
            return;
        setenv("LD_PRELOAD", TURNS, 1);
        setenv("TURNS_TABLE", table_.file().c_str(), 1);
        setenv("TURNS_SEAT", "0", 1);
        dup2(open(told_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        dup2(open(notes_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        execl(TOOL, TOOL, "--db", workshop_.file().c_str(), "watch", "FAV1", "FAV2", "FAV3", "FAV4",
              "--json", nullptr);
        _exit(1);
    }

    // Edits once the watcher has seen the lists.
    pid_t startEditor(unsigned seed) {
        return startChild([&] {
            turns::Seat const seat = table_.sit(1);
            while (bytesOf(notes_).empty())
                rest();
            editAtRandom(seed);
        });
    }

    void play(unsigned seed) {
        workshop_.renew();
        Lists lists = listsOf(workshop_);
        std::filesystem::remove(notes_);
        table_.renew(2, seed);
        startWatcher();
        EXPECT_EQ(endOf(startEditor(seed)), 0);
        Lists const atEnd = listsOf(workshop_);
        Lists told;
        for (int tries = 0; tries < 200; ++tries) {  // 10 seconds for the last look
            rest();
            told = lists;
            if (!applyAll(bytesOf(told_), told).empty() || told == atEnd)
                break;
        }
        kill(watcher_, SIGTERM);
        EXPECT_EQ(endOf(watcher_), 0);
        EXPECT_EQ(applyAll(bytesOf(told_), lists), "");
        EXPECT_TRUE(lists == atEnd) << "a change was not told";
        auto const text = bytesOf(told_);
        events_ += std::count(text.begin(), text.end(), '\n');
    }

    Workshop workshop_{GetParam()};
    std::string told_ = workshop_.file() + ".told", notes_ = workshop_.file() + ".notes";
    turns::Table table_{2, 0};
    pid_t watcher_ = 0;
    long events_ = 0;
};

TEST_P(WatchTest, ToldLeadsToTheLists) {
    for (unsigned seed = 1; seed <= kRounds && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        play(seed);
    }
    std::printf("%u edits, %ld events\n", kRounds * kEdits, events_);
}

INSTANTIATE_TEST_SUITE_P(Journals, WatchTest, testing::Values(Journal::Rollback, Journal::Wal));

}  // namespace
