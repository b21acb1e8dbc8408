// Every entry point, with every operation on a file and every allocation failing in turn.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <new>
#include <tuple>

#include "entry_points.h"
#include "failing_memory.h"
#include "fault.h"
#include "quiet_platform.h"
#include "workshop.h"

namespace {

struct Strike {
    FaultKind kind;
    char const* name;
};

constexpr Strike kStrikes[] = {
    {FaultKind::StorageError, "I/O errors"},
    {FaultKind::StorageFull, "writes to a full disk"},
    {FaultKind::StorageBusy, "refused locks"},
    {FaultKind::New, "failures of operator new"},
    {FaultKind::SqliteMemory, "failures of SQLite's allocator"},
    {FaultKind::Interrupt, "interrupts of SQLite's engine"},
};

// The progress handler of a host, on every connection.
int interruptEach(sqlite3* connection, char const**, sqlite3_api_routines const*) {
    auto const handler = [](void*) { return fault.strikes(FaultKind::Interrupt) ? 1 : 0; };
    sqlite3_progress_handler(connection, 1, handler, nullptr);
    return SQLITE_OK;
}

class Faults : public testing::TestWithParam<std::tuple<Journal, EntryPoint>> {
  protected:
    static void SetUpTestSuite() {
        memory::install();
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(interruptEach));
    }

    void SetUp() override;
    bool runStruck(Strike const& strike, bool lasting, unsigned at);
    void checkAnswer(Answer const& answer) const;
    void checkFile(bool failed) const;
    void checkNextCall() const;

    static Journal journal() { return std::get<Journal>(GetParam()); }
    static EntryPoint const& entry() { return std::get<EntryPoint>(GetParam()); }
    std::unique_ptr<Workshop> workshop_;
    Contents before_, after_;
    Answer right_;
    bool raised_ = false;
    unsigned struck_ = 0;
};

void openIfNeeded(EntryPoint const& entry) {
    if (!entry.opens && db == nullptr)
        dbaccess::select_Folders();
}

void Faults::SetUp() {
    workshop_ = std::make_unique<Workshop>(journal());
    before_ = workshop_->contents();
    openIfNeeded(entry());
    right_ = entry().call();
    ASSERT_FALSE(right_.failed);
    after_ = workshop_->contents();
    ASSERT_EQ(before_.tables + before_.favNumbers == after_.tables + after_.favNumbers,
              entry().writes == Writes::Nothing);
}

void Faults::checkAnswer(Answer const& answer) const {
    EXPECT_EQ(right_.text.substr(0, answer.text.size()), answer.text);
    if (answer.failed || entry().maySayLess)
        return;
    EXPECT_EQ(answer.text, right_.text);
}

void Faults::checkFile(bool failed) const {
    if (entry().writes == Writes::Nothing && workshop_->isUntouched())
        return;
    Contents const now = workshop_->contents();
    EXPECT_EQ(now.integrity, "ok|\n");
    // A failing look at the file counts as another's write, and the list is announced again.
    for (std::size_t list = 0; list < now.tags.size(); ++list)
        EXPECT_TRUE(
            now.tags[list] == before_.tags[list] || now.tags[list] == after_.tags[list] ||
            (after_.tags[list] != before_.tags[list] && now.tags[list] == after_.tags[list] + 1));
    Contents const& expected = failed ? before_ : after_;
    EXPECT_EQ(now.tables, expected.tables);
    bool const isRenumberingLost = entry().writes == Writes::WholeEdit && platform::errors > 0;
    if (entry().writes == Writes::ItemByItem || (!failed && isRenumberingLost))
        return;
    EXPECT_EQ(now.favNumbers, expected.favNumbers);
    if (failed || platform::errors != 0)
        return;  // a tag that could not be advanced was at least logged
    EXPECT_EQ(now.tags, after_.tags);
}

void checkConnection(sqlite3* connection) {
    EXPECT_EQ(pthread_mutex_trylock(&svresult_mutex), 0);
    pthread_mutex_unlock(&svresult_mutex);
    if (connection == nullptr)
        return;
    EXPECT_EQ(sqlite3_next_stmt(connection, nullptr), nullptr);
    EXPECT_NE(sqlite3_get_autocommit(connection), 0);
}

// A failed open that get_dbservices leaves in `db` is the host's to close.
void closeFailedHandle() {
    if (db != nullptr && sqlite3_exec(db, "", nullptr, nullptr, nullptr) == SQLITE_MISUSE)
        forgetLibraryState();
}

void Faults::checkNextCall() const {
    openIfNeeded(entry());
    Answer const next = entry().call();
    EXPECT_FALSE(next.failed);
    EXPECT_EQ(next.text, right_.text);
    if (entry().writes == Writes::Nothing && workshop_->isUntouched())
        return;
    Contents const now = workshop_->contents();
    EXPECT_EQ(now.tables, after_.tables);
    EXPECT_EQ(now.favNumbers, after_.favNumbers);
}

// False once the call has too few operations for the fault to strike.
bool Faults::runStruck(Strike const& strike, bool lasting, unsigned at) {
    workshop_->renew();
    long const blocks = memory::liveBlocks();
    {
        openIfNeeded(entry());
        Answer answer = {true, ""};
        fault = {strike.kind, at, lasting};
        platform::errors = 0;
        try {
            answer = entry().call();
        } catch (std::bad_alloc const&) {
            EXPECT_EQ(strike.kind, FaultKind::New);
            raised_ = true;
        }
        struck_ += fault.struck();
        fault.kind = FaultKind::None;
        checkAnswer(answer);
        checkFile(answer.failed);
        checkConnection(db);
        checkConnection(db_zentova);
        closeFailedHandle();
        checkNextCall();
        forgetLibraryState();
    }
    EXPECT_TRUE(HasFailure() || memory::liveBlocks() == blocks)  // a failure takes memory, too
        << "leaked: " << memory::liveBlocks() << " blocks, before " << blocks;
    return fault.struck() > 0;
}

// SQLite parses with thousands of allocations and runs thousands of steps: the first runs strike
// each. The others, which differ in how the call ends, those in WAL mode, interrupts of reads, and
// all under a sanitizer, which is slow, strike some.
unsigned step(Strike const& strike, bool writes, bool some) {
#ifdef __SANITIZE_ADDRESS__
    some = true;
#endif
    if (strike.kind == FaultKind::Interrupt)
        return some || !writes ? 11 : 1;
    return strike.kind == FaultKind::SqliteMemory && some ? 11 : 1;
}

TEST_P(Faults, LeaveTheDatabaseWholeAndTheLibraryWorking) {
    bool const isWal = journal() == Journal::Wal;
    for (Strike const& strike : kStrikes) {
        // A statement of the host's own may be done and interrupted, which SQLite tells it.
        if (strike.kind == FaultKind::Interrupt && !entry().opens &&
            entry().writes == Writes::Whole)
            continue;
        struck_ = 0;
        for (bool const lasting : {false, true})
            for (unsigned at = 1; runStruck(strike, lasting, at);
                 at += step(strike, entry().writes != Writes::Nothing, lasting || isWal))
                ASSERT_FALSE(HasFailure()) << strike.name << ": " << at << (lasting ? " on" : "");
        std::printf("figure: %u %s\n", struck_, strike.name);
    }
    EXPECT_EQ(raised_, entry().raisesBadAlloc) << "std::bad_alloc reached the host, or never did";
}

// A deadline of the host meets storage that fails: COMMIT is interrupted, whatever became of it.
TEST(InterruptedCommit, IsDoneOrHasWrittenNothing) {
    static int steps, first;
    auto const begins = [](unsigned, void*, void* statement, void*) {
        char const* const sql = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
        steps = sql != nullptr && std::string(sql).compare(0, 6, "COMMIT") == 0 ? 1 : 0;
        return 0;
    };
    auto const interrupts = [](void*) { return steps > 0 && ++steps > first ? 1 : 0; };
    auto const entry = std::find_if(
        kEntryPoints.begin(), kEntryPoints.end(),
        [](EntryPoint const& each) { return each.writes == Writes::Whole && each.opens; });
    int done = 0, failed = 0;
    for (Journal const journal : {Journal::Rollback, Journal::Wal})
        for (int const run : {2, 3, 4, 5}) {
            first = 2 + run / 2;  // before and behind the step that commits
            bool const lasting = run % 2 != 0;
            Workshop workshop(journal);
            std::string const before = workshop.contents().tables;
            for (unsigned at = 1; at == 1 || fault.struck() > 0; ++at) {
                workshop.renew();
                dbaccess::select_Folders();
                sqlite3_trace_v2(db, SQLITE_TRACE_STMT, begins, nullptr);
                sqlite3_progress_handler(db, 1, interrupts, nullptr);
                fault = {FaultKind::StorageError, at, lasting};
                bool const hasFailed = entry->call().failed;
                fault.kind = FaultKind::None;
                checkConnection(db);
                forgetLibraryState();
                EXPECT_EQ(workshop.contents().tables == before, hasFailed)
                    << journal << " " << at << (lasting ? " on" : "");
                ++(hasFailed ? failed : done);
            }
        }
    EXPECT_GT(done, 4);
    EXPECT_GT(failed, 20);
}

// Each row needs more room than the one before left.
TEST(Snapshot, ChangesAsAWholeOrNotAtAllWithoutMemory) {
    auto const texts = [] {
        return sv.caption + sv.locator + sv.userIndex + sv.uuid + sv.originalAncestor +
               sv.tunerUuid + sv.originalLcn + sv.nitId;
    };
    bool isWhole = false;
    unsigned at = 1;
    for (; !isWhole; ++at) {
        ResultRow row(34, "0");
        std::string all;
        for (std::size_t const column : {3U, 8U, 1U, 7U, 6U, 24U, 32U, 33U})
            all += row[column] = std::string(100U << at, static_cast<char>('a' + at));
        std::string const before = texts();
        fault = {FaultKind::New, at, false};
        try {
            FaultWindow const window;
            dbaccess::fetchServiceItem(row);
            isWhole = true;
        } catch (std::bad_alloc const&) {
        }
        fault.kind = FaultKind::None;
        EXPECT_TRUE(texts() == (isWhole ? all : before)) << at;
    }
    EXPECT_GT(at, 8U) << "a text took no room";
}

INSTANTIATE_TEST_SUITE_P(EntryPoints, Faults,
                         testing::Combine(testing::Values(Journal::Rollback, Journal::Wal),
                                          testing::ValuesIn(kEntryPoints)));

}  // namespace
