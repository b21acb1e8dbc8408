// The power fails at every operation of several edits: what was reported as done is there, whole.
//
// A failure prints its seed. POWER_CUTS=SEED runs with that one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>

#include "entry_points.h"
#include "faulty_storage.h"
#include "power_cut.h"
#include "quiet_platform.h"
#include "workshop.h"

namespace {

constexpr unsigned kCuts = 10000;  // in each journal mode

std::vector<std::vector<std::string>> const kEdits = {
    edit("list-of-favourites-1", {2, 7, 4, 8, 6}, 11),
    edit("list-of-all-services", {1, 3, 5}, 21, 0x01 | 0x04 | 0x20),
    edit("list-own-2", {6, 5, 4}, 31),
    edit("list-of-favourites-3", {}, 41),
    edit("list-of-all-services", {3, 5}, 51, 0x02 | 0x08 | 0x20),
    edit("list-of-favourites-1", {1, 2, 9}, 61)};

using disk::Files;

// What a database holds, or why that cannot be read.
struct Found {
    std::string content, integrity;
    std::vector<int> tags;
};

int append(void* text, int count, char** values, char**) {
    for (int i = 0; i < count; ++i)
        *static_cast<std::string*>(text) += std::string(values[i] ? values[i] : "NULL") + '|';
    return 0;
}

Found foundIn(std::string const& file) {
    sqlite3* connection = nullptr;
    Found found;
    sqlite3_open_v2(file.c_str(), &connection, SQLITE_OPEN_READWRITE, "unix");
    auto const read = [&](char const* sql, std::string& text) {
        if (sqlite3_exec(connection, sql, append, &text, nullptr) != SQLITE_OK)
            text += sqlite3_errmsg(connection);
    };
    read("PRAGMA synchronous = OFF; PRAGMA integrity_check", found.integrity);
    read(
        "SELECT Id, ServiceId, FavoriteId, ChannelNum, isDeleted FROM FavoriteItem ORDER BY Id;"
        "SELECT Pid, FavTag, FavTag2, FavTag3, FavTag4 FROM Service;"
        "SELECT Pid, Uuid, MaxChannelNumber FROM FavoriteList",
        found.content);
    std::string tags;
    read("SELECT UpdateTag FROM FavoriteList", tags);
    sqlite3_close(connection);
    std::replace(tags.begin(), tags.end(), '|', ' ');
    std::istringstream numbers(tags);
    found.tags.assign(std::istream_iterator<int>(numbers), {});
    return found;
}

bool areBetween(std::vector<int> const& low, std::vector<int> const& tags,
                std::vector<int> const& high) {
    auto const isAtMost = [](int one, int other) { return one <= other; };
    return std::equal(low.begin(), low.end(), tags.begin(), tags.end(), isAtMost) &&
           std::equal(tags.begin(), tags.end(), high.begin(), high.end(), isAtMost);
}

class PowerCuts : public testing::TestWithParam<Journal> {
  protected:
    static void SetUpTestSuite() { setenv("TMPDIR", "/dev/shm", 1); }  // no disk is waited for

    PowerCuts() : workshop_(GetParam()) {
        storage::flushes = platform::flushes = true;
        directory_ = std::filesystem::path(workshop_.file()).parent_path();
        made_ = disk::filesIn(directory_);
        recordEdits();
        findRight();
        storage::flushes = platform::flushes = false;
    }

    // The database is closed once between them, which empties a WAL.
    void makeEdits(std::function<void(std::size_t done)> const& afterEach) {
        for (std::size_t done = 1; done <= kEdits.size(); ++done) {
            ASSERT_GE(dbaccess::onServiceListEdit(kEdits[done - 1]), 0);
            if (done == kEdits.size() / 2)
                forgetLibraryState();
            afterEach(done);
        }
        forgetLibraryState();
    }

    void recordEdits() {
        std::string const log = directory_ + ".log";
        {
            disk::Recorder const recorder(directory_, log);
            makeEdits([&](std::size_t) { disk::report(log, "an edit"); });
        }
        operations_ = disk::operationsOf(log);
        std::filesystem::remove(log);
    }

    void findRight() {
        disk::putFiles(directory_, made_);
        right_[0] = foundIn(workshop_.file());
        makeEdits([&](std::size_t done) { right_[done] = foundIn(workshop_.file()); });
    }

    // What is wrong after a cut when `done` edits were reported; "" when nothing is.
    std::string wrong(Files const& files, std::size_t done) {
        disk::putFiles(directory_, files);
        Found const now = foundIn(workshop_.file());
        if (now.integrity != "ok|")
            return now.integrity;
        std::size_t const next = std::min(done + 1, kEdits.size());
        bool const isNext = now.content == right_[next].content && now.tags == right_[next].tags;
        // The update tag of the next edit may be there before it.
        bool const isDone = now.content == right_[done].content &&
                            areBetween(right_[done].tags, now.tags, right_[next].tags);
        if (isDone || isNext)
            return "";
        return "neither edit " + std::to_string(done) + " nor the next";
    }

    disk::Outcome cut(unsigned cuts, bool withFlushes) {
        return disk::cutEverywhere(
            {made_, operations_}, cuts, withFlushes, seed_,
            [this](Files const& files, std::size_t done) { return wrong(files, done); });
    }

    Workshop workshop_;
    std::string directory_;
    Files made_;
    std::vector<Found> right_ = std::vector<Found>(kEdits.size() + 1);  // after so many edits
    std::vector<disk::Operation> operations_;
    std::uint64_t seed_ = disk::seedOf("POWER_CUTS");
};

TEST_P(PowerCuts, LoseNoEditThatWasReportedAndLeaveNoneInHalves) {
    disk::Outcome const outcome = cut(kCuts, true);
    EXPECT_EQ(outcome.firstFault, "");
    std::printf("figure: %u power cuts, %s\n", outcome.cuts,
                GetParam() == Journal::Wal ? "WAL" : "rollback journal");
    std::printf("figure: %zu different disks after them\n", outcome.disks);
}

// The control: edits whose files are not flushed.
TEST_P(PowerCuts, FindEditsThatDoNotFlush) {
    disk::Outcome const outcome = cut(500, false);
    EXPECT_GT(outcome.faults, 0U);
    std::printf("figure: %u faults found in %u power cuts without flushes\n", outcome.faults,
                outcome.cuts);
}

INSTANTIATE_TEST_SUITE_P(Journals, PowerCuts, testing::Values(Journal::Rollback, Journal::Wal),
                         testing::PrintToStringParamName());

}  // namespace
