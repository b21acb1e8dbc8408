// Several processes that read and edit one file at once.
#include <gtest/gtest.h>

#include <sys/time.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>

#include "child_process.h"
#include "entry_points.h"
#include "quiet_platform.h"
#include "workshop.h"

namespace {

constexpr unsigned kProcesses = 6;
constexpr unsigned kListOwners = 4;  // of them edit a list of their own, too
constexpr unsigned kRequests = 800;  // of each process

constexpr char kFav1[] = "list-of-favourites-1";
constexpr char kFav2[] = "list-of-favourites-2";

// An attempt on a locked file costs the busy timeout of one second and a sleep of 100 ms. A read
// makes 50, beside a few statements that are tried once, and an edit 10 and seven times 50.
enum Kind { Read, Edit, kKinds };
constexpr unsigned kLongestWait[kKinds] = {58000, 397000};  // milliseconds

struct Tally {
    std::atomic<unsigned> requests{0};
    std::atomic<unsigned> done{0};
    std::atomic<unsigned> doneOnFav1{0};
    std::atomic<unsigned> busy{0};
    std::atomic<unsigned> longest[kKinds] = {};  // milliseconds
};

std::string seen(ResultSet const& rows) {
    std::string text;
    for (auto const& row : rows)
        text += row->at(0) + '|' + row->at(11) + "|\n";
    return text;
}

unsigned channelOf(ResultRow const& row) { return static_cast<unsigned>(std::stoul(row[0])); }

// One of the processes. Its edits number the services from a multiple of 100 on that no other edit
// uses, so that a list shows which edit wrote it.
class Client {
  public:
    Client(unsigned process, Tally& tally) : process_(process), tally_(tally), random_(process) {}

    void work() {
        platform::sleepsTakeTime = true;
        services(kFav1);  // sets the busy timeout, so that no update tag is given up
        for (unsigned request = 0; request < kRequests && !testing::Test::HasFailure(); ++request)
            makeRequest(random_() % 8);
        EXPECT_EQ(platform::strangeErrors, 0U) << "failures other than a locked database";
    }

  private:
    void makeRequest(unsigned kind) {
        bool const hasOwnList = process_ < kListOwners;
        if (kind == 0)
            hasOwnList ? editOwnList() : renumberFav2();
        else if (kind <= 2)
            editFavList(kind == 1 ? kFav1 : kFav2);
        else if (kind == 3)
            readFoldersAndKey();
        else if (kind <= 5 || !hasOwnList)
            readFavList(kind == 4 ? kFav1 : kFav2);
        else
            readOwnList();
    }

    template <typename Request>
    auto timed(Kind kind, Request request) {
        auto const start = std::chrono::steady_clock::now();
        auto answer = request();
        auto const wait = static_cast<unsigned>(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count());
        EXPECT_LT(wait, kLongestWait[kind]);
        unsigned longest = tally_.longest[kind];
        while (wait > longest && !tally_.longest[kind].compare_exchange_weak(longest, wait)) {
        }
        ++tally_.requests;
        return answer;
    }

    // False after a busy result, the only failure there may be.
    bool edits(std::vector<std::string> arguments) {
        int const code =
            timed(Edit, [&] { return dbaccess::onServiceListEdit(std::move(arguments)); });
        EXPECT_TRUE(code >= 0 || code == -2) << code;
        ++(code >= 0 ? tally_.done : tally_.busy);
        return code >= 0;
    }

    // Empty after a busy result alone.
    ResultSet services(std::string const& list) {
        unsigned const errors = platform::errors;
        ResultSet rows = timed(Read, [&] { return dbaccess::get_dbservices(list); });
        if (rows.empty()) {
            EXPECT_GT(platform::errors, errors) << "no services, and no word about it";
            ++tally_.busy;
        }
        return rows;
    }

    void editOwnList() {
        unsigned const first = nextFirst();
        if (edits(edit(ownList(), allServices(), first)))
            ownFirst_ = first;
    }

    void editFavList(char const* list) {
        unsigned const first = nextFirst();
        if (edits(edit(list, servicesFor(first), first)) && list == kFav1)
            ++tally_.doneOnFav1;
    }

    void renumberFav2() { edits(edit("list-of-all-services", {1}, 1, 0x02 | 0x08)); }

    // Nobody else edits this list, so the last edit that was reported as done must be there.
    void readOwnList() {
        ResultSet const rows = services(ownList());
        if (rows.empty())
            return;
        EXPECT_EQ(seen(rows), listing(allServices(), ownFirst_)) << "an edit was lost";
    }

    void readFavList(char const* list) {
        ResultSet const rows = services(list);
        if (rows.empty())
            return;
        unsigned const first = channelOf(*rows.front());
        EXPECT_TRUE(first < 100 || seen(rows) == listing(servicesFor(first), first))
            << "half of an edit: " << seen(rows);
        EXPECT_EQ(channelOf(*rows.back()), first + rows.size() - 1) << "half renumbered";
    }

    void readFoldersAndKey() {
        unsigned const errors = platform::errors;
        ResultSet const rows = timed(Read, dbaccess::select_Folders);
        EXPECT_TRUE(rows.size() == 5 + kOwnLists || platform::errors > errors) << rows.size();
        auto const key = timed(Read, [] { return dbaccess::getBissKeyFromService("service-1"); });
        EXPECT_TRUE(key != "NULL" || platform::errors > errors);
    }

    std::string ownList() const { return "list-own-" + std::to_string(process_ + 1); }
    unsigned nextFirst() { return (++edits_ * kProcesses + process_) * 100; }

    unsigned process_;
    Tally& tally_;
    std::mt19937 random_;
    unsigned edits_ = 0;
    unsigned ownFirst_ = 1;
};

TEST(Sharing, LosesNoEditAndShowsNoneInHalves) {
    Workshop workshop(Journal::Rollback, true);
    Tally& tally = sharedValue<Tally>();
    std::vector<pid_t> children;
    for (unsigned process = 0; process < kProcesses; ++process)
        children.push_back(startChild([&] { Client(process, tally).work(); }));
    for (pid_t const child : children)
        EXPECT_EQ(endOf(child), 0);
    Contents const now = workshop.contents();
    EXPECT_EQ(now.integrity, "ok|\n");
    EXPECT_GE(static_cast<unsigned>(now.tags[1]), tally.doneOnFav1);
    EXPECT_GT(tally.done, 100U);
    std::printf("figure: %u requests of %u processes on one file\n", tally.requests.load(),
                kProcesses);
    std::printf("figure: %u edits done beside each other\n", tally.done.load());
    std::printf("figure: %u busy results\n", tally.busy.load());
    std::printf("longest: %u ms a read\n", tally.longest[Read].load());
    std::printf("longest: %u ms an edit\n", tally.longest[Edit].load());
}

// Each request of a process that opens the file anew, with no busy timeout: another one may be
// committing while it finds its list.
TEST(Sharing, RefusesNoEditOfAFreshConnection) {
    constexpr unsigned kEdits = 840;
    Workshop workshop(Journal::Rollback, true);
    auto const work = [](unsigned process) {
        platform::sleepsTakeTime = true;
        std::string const list = "list-own-" + std::to_string(process + 1);
        for (unsigned first = 1; first <= kEdits; ++first) {
            forgetLibraryState();
            EXPECT_GE(dbaccess::onServiceListEdit(edit(list, allServices(), first)), 0);
            EXPECT_EQ(seen(dbaccess::get_dbservices(list)), listing(allServices(), first));
        }
    };
    std::vector<pid_t> children;
    for (unsigned process = 0; process < kProcesses; ++process)
        children.push_back(startChild([&] { work(process); }));
    for (pid_t const child : children)
        EXPECT_EQ(endOf(child), 0);
    std::printf("figure: %u edits of fresh connections, none refused\n", kProcesses * kEdits);
}

// The owner of the OTT database is committing whenever its numbers are asked for.
TEST(Sharing, WaitsForTheOwnerOfTheOttDatabase) {
    Workshop workshop(Journal::Rollback, true);
    std::vector<unsigned> right;
    ASSERT_EQ(dbaccess::getOttFav4List(right), 0);
    std::string const file = workshop.ottFile();
    platform::sleepsTakeTime = true;
    for (unsigned round = 0; round < 3; ++round) {
        forgetLibraryState();
        int locked[2];
        ASSERT_EQ(pipe(locked), 0);
        pid_t const owner = startChild([&] {
            sqlite3* connection = nullptr;
            sqlite3_open_v2(file.c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr);
            sqlite3_exec(connection, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
            EXPECT_EQ(write(locked[1], "", 1), 1);
            usleep(200000);
            sqlite3_close(connection);
        });
        char byte;
        EXPECT_EQ(read(locked[0], &byte, 1), 1);
        std::vector<unsigned> numbers;
        EXPECT_EQ(dbaccess::getOttFav4List(numbers), 0);
        EXPECT_EQ(numbers, right);
        EXPECT_EQ(endOf(owner), 0);
        close(locked[0]);
        close(locked[1]);
    }
    platform::sleepsTakeTime = false;
}

// A signal ends usleep early; the fifty attempts last five seconds all the same.
TEST(Sharing, SignalsShortenNoWait) {
    Workshop workshop(Journal::Rollback, true);
    EXPECT_EQ(endOf(startChild([] {
                  platform::sleepsTakeTime = true;
                  EXPECT_FALSE(dbaccess::select_Folders().empty());
                  EXPECT_EQ(sqlite3_exec(db, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), 0);
                  sqlite3* const holder = std::exchange(db, nullptr);
                  std::signal(SIGALRM, [](int) {});
                  itimerval const each = {{0, 2000}, {0, 2000}};
                  setitimer(ITIMER_REAL, &each, nullptr);
                  auto const start = std::chrono::steady_clock::now();
                  EXPECT_TRUE(dbaccess::select_Folders().empty());
                  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
                  sqlite3_close(holder);
              })),
              0);
}

}  // namespace
