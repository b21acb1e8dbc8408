// An editing process that dies by SIGKILL: at each of its writes, half of it done, and at random
// moments.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <random>
#include <thread>

#include "child_process.h"
#include "entry_points.h"
#include "fault.h"
#include "workshop.h"

namespace {

class Killed : public testing::TestWithParam<std::tuple<Journal, EntryPoint>> {};

// Whole: the writes of one transaction are there, its update tags among them. The tag of the edited
// list alone, which is advanced before, may be ahead.
void expectWholeOrAbsent(Contents const& now, Contents const& before, Contents const& after) {
    EXPECT_EQ(now.integrity, "ok|\n");
    bool const isWhole = now.tables == after.tables && now.favNumbers == after.favNumbers;
    bool const isAbsent = now.tables == before.tables && now.favNumbers == before.favNumbers;
    EXPECT_TRUE(isWhole || isAbsent) << now.tables << now.favNumbers;
    std::vector<int> ahead = before.tags;
    for (std::size_t list = 0; list < ahead.size() && ahead == before.tags; ++list)
        ahead[list] = after.tags[list];
    if (isWhole)
        ahead = after.tags;
    EXPECT_TRUE(now.tags == ahead || (!isWhole && now.tags == before.tags));
}

TEST_P(Killed, AtEachWriteLeavesTheEditWholeOrAbsent) {
    auto const& [journal, edit] = GetParam();
    Workshop workshop(journal);
    Contents const before = workshop.contents();
    ASSERT_FALSE(edit.call().failed);
    Contents const after = workshop.contents();
    unsigned kills = 0;
    for (int signal = SIGKILL; signal != 0 && !HasFailure(); ++kills) {
        workshop.renew();
        signal = endOf(startChild([&, &edit = edit] {
            fault = {FaultKind::Kill, kills + 1, false};
            edit.call();
            FaultWindow const window;
            forgetLibraryState();  // writes a WAL into the file
        }));
        expectWholeOrAbsent(workshop.contents(), before, after);
        EXPECT_FALSE(edit.call().failed);
        EXPECT_EQ(workshop.contents().tables, after.tables);
    }
    ASSERT_GT(kills, 10U);
    std::printf("figure: %u kills at a write\n", kills - 1);
}

std::vector<EntryPoint> edits() {
    std::vector<EntryPoint> found;
    for (EntryPoint const& entry : kEntryPoints)
        if (entry.opens && entry.writes != Writes::Nothing)
            found.push_back(entry);
    return found;
}

INSTANTIATE_TEST_SUITE_P(EntryPoints, Killed,
                         testing::Combine(testing::Values(Journal::Rollback, Journal::Wal),
                                          testing::ValuesIn(edits())));

int edited(unsigned int stamp) {
    return dbaccess::onServiceListEdit(
        edit("list-of-favourites-1", servicesFor(stamp * 100), stamp * 100));
}

std::string editOf(unsigned int stamp) { return listing(servicesFor(stamp * 100), stamp * 100); }

class KilledAtRandom : public testing::TestWithParam<Journal> {};

TEST_P(KilledAtRandom, LosesNoEditThatWasReportedAsDone) {
    constexpr int kRounds = 500;
    Workshop workshop(GetParam());
    auto& done = sharedValue<std::atomic<unsigned>>();
    ASSERT_GE(edited(0), 0);
    forgetLibraryState();
    unsigned const seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    int ahead = 1;  // of the count of edits: the update tag, which the edit above advanced, too
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        pid_t const child = startChild([&] {
            for (;; ++done)
                ASSERT_GE(edited(done + 1), 0);
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
        kill(child, SIGKILL);
        EXPECT_EQ(endOf(child), SIGKILL);
        EXPECT_EQ(workshop.rows("PRAGMA integrity_check"), "ok|\n");
        std::string const found = workshop.rows(
            "SELECT ChannelNum, ServiceId FROM FavoriteItem WHERE FavoriteId = 2 ORDER BY 1");
        if (found == editOf(done + 1))
            ++done;  // committed, and killed before it could say so
        EXPECT_EQ(found, editOf(done));
        int const nowAhead = workshop.contents().tags[1] - static_cast<int>(done);
        EXPECT_TRUE(nowAhead == ahead || nowAhead == ahead + 1);
        ahead = nowAhead;
    }
    std::printf("figure: %d kills at a random moment\n", kRounds);
    std::printf("figure: %u edits between them\n", done.load());
}

INSTANTIATE_TEST_SUITE_P(Journals, KilledAtRandom, testing::Values(Journal::Rollback, Journal::Wal),
                         testing::PrintToStringParamName());

}  // namespace
