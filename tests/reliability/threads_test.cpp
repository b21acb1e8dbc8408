// The four locked entry points from many threads, and first calls that race to open the file.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <thread>

#include "entry_points.h"
#include "workshop.h"

namespace {

constexpr int kThreads = 8;

// Runs each of the calls on `copies` threads, all at once.
void runAtOnce(std::vector<std::function<void()>> const& calls, std::size_t copies = 1) {
    std::atomic<bool> start{false};
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < copies * calls.size(); ++thread)
        threads.emplace_back([&start, &call = calls[thread / copies]] {
            while (!start)
                std::this_thread::yield();
            call();
        });
    start = true;
    for (std::thread& thread : threads)
        thread.join();
}

void readServices(std::string const& list) {
    EXPECT_EQ(dbaccess::get_dbservices(list).size(), static_cast<std::size_t>(kServices));
}

void findAnchor() {
    std::string uuid;
    EXPECT_EQ(dbaccess::getAstraAnchorService(uuid), 0);
    EXPECT_EQ(uuid, "service-3");
}

void findScrambled() {
    int flag = 0;
    EXPECT_EQ(dbaccess::checkAstraScrambleService(flag), 0);
    EXPECT_EQ(flag, 1);
}

void editAndRead(std::string const& list, unsigned first) {
    EXPECT_EQ(dbaccess::onServiceListEdit(edit(list, allServices(), first)), SQLITE_DONE);
    ResultSet const rows = dbaccess::get_dbservices(list);
    ASSERT_EQ(rows.size(), static_cast<std::size_t>(kServices));
    EXPECT_EQ(rows.front()->at(0), std::to_string(first));
}

TEST(Threads, MayCallTheLockedEntryPointsAtOnce) {
    constexpr unsigned kRounds = 40;
    Workshop workshop(Journal::Rollback);
    std::vector<std::function<void()>> calls;
    for (int thread = 0; thread < kThreads; ++thread)
        calls.push_back([list = "list-own-" + std::to_string(thread % kOwnLists + 1), thread] {
            for (unsigned round = 1; round <= kRounds; ++round) {
                thread < kOwnLists ? editAndRead(list, round * 100) : readServices(list);
                findAnchor();
                findScrambled();
            }
        });
    runAtOnce(calls);
    std::printf("figure: %u rounds of calls on threads\n", kRounds * kThreads);
}

// Every entry point that opens on demand without being locked, too.
TEST(Threads, MayRaceToOpen) {
    constexpr int kRounds = 60;
    std::vector<std::function<void()>> const calls = {
        [] { readServices("list-own-1"); },
        findAnchor,
        findScrambled,
        [] { editAndRead("list-own-2", 100); },
        [] { EXPECT_FALSE(dbaccess::select_Folders().empty()); },
        [] {
            unsigned int attributes = 0;
            EXPECT_EQ(dbaccess::getFavriteAttributes("list-of-all-services", &attributes), 0);
        },
        [] {
            std::vector<unsigned int> positions;
            EXPECT_EQ(dbaccess::getOttFav4List(positions), 0);
        },
    };
    Workshop workshop(Journal::Rollback);
    auto const memory = sqlite3_memory_used();
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        forgetLibraryState();
        runAtOnce(calls, 2);
    }
    forgetLibraryState();
    EXPECT_EQ(sqlite3_memory_used(), memory) << "a call opened a connection that nobody closes";
    std::printf("figure: %d races to open\n", kRounds);
}

}  // namespace
