// The one way in which a list is written, beside others that write.
#include "edit/write_list.h"

#include <channel-database/builder.h>
#include <channellist-access/db_access.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "database/frozen_database.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "library_messages/library_messages.h"
#include "listener.h"
#include "undo/take_back.h"

using namespace channel_lists;
namespace fs = std::filesystem;

namespace {

// Another process, that writes at the moment of the library's n-th message.
class Other : public Listener {
  public:
    Other(std::string const& file, std::string sql, int moment)
        : sql_(std::move(sql)), moment_(moment) {
        sqlite3_open(file.c_str(), &connection_);
        setListener(this);
    }
    ~Other() override {
        setListener(nullptr);
        sqlite3_close(connection_);
    }
    Other(Other const&) = delete;
    Other& operator=(Other const&) = delete;

    void trace(std::string const& /*message*/) noexcept override {
        if (++messages == moment_)
            hasWritten =
                sqlite3_exec(connection_, sql_.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }

    int messages = 0;
    bool hasWritten = false;  // it does not wait for a lock

  private:
    sqlite3* connection_ = nullptr;
    std::string sql_;
    int moment_;
};

class WriteList : public testing::TestWithParam<char const*> {
  protected:
    static void SetUpTestSuite() { setenv("TMPDIR", "/dev/shm", 1); }  // no disk is waited for

    WriteList() {
        std::string pattern = (fs::temp_directory_path() / "lists-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        setenv("HOME", folder_.c_str(), 1);
        setenv("PATH", (folder_.string() + ":" + std::getenv("PATH")).c_str(), 1);
        fs::create_symlink("/bin/true", folder_ / "sync");  // the library runs it after an edit
        make();
        traceMessages("all");
    }
    ~WriteList() override { fs::remove_all(folder_); }

    void make() {
        session_.reset();
        for (char const* ending : {"", "-wal", "-shm", "-journal"})
            fs::remove(file() + ending);
        if (!fs::exists(made()))
            makeDatabase();
        fs::copy_file(made(), file());
        session_.emplace(file(), Access::Write);
        Query(db, std::string("PRAGMA journal_mode = ") + GetParam()).next();
    }

    void makeDatabase() {
        channel_database::ChannelDatabase d(made());
        auto const all = d.list("tamun.sl2.servicelist$all", 1).name("$all").uuid("all");
        auto const fav1 = d.list("User.tvFAV1", 11).uuid("fav1");
        auto const fav2 = d.list("User.tvFAV2", 12).uuid("fav2");
        d.list("User.tvFAV3", 13).uuid("fav3");
        d.list("User.tvFAV4", 14).uuid("fav4");
        for (int i = 1; i <= 4; ++i) {
            auto const service = d.dvbs2("S" + std::to_string(i), i).triplet(1, 1, i);
            d.put(all, service, i);
            d.put(i < 4 ? fav1 : fav2, service, i);
        }
    }

    std::string made() const { return (folder_ / "made.db").string(); }
    std::string file() const { return (folder_ / "set.db").string(); }

    std::string items() const {
        sqlite3* connection = nullptr;
        sqlite3_open(file().c_str(), &connection);
        std::string text;
        {
            Query rows(connection,
                       "SELECT FavoriteId || ':' || ChannelNum || ':' || ServiceId ||"
                       " CASE isDeleted WHEN 0 THEN ' ' ELSE '- ' END"
                       " FROM FavoriteItem WHERE FavoriteId > 1 ORDER BY 1");
            while (rows.next())
                text += rows.text(0);
        }
        sqlite3_close(connection);
        return text;
    }

    fs::path folder_;
    std::optional<Session> session_;
};

SeenList see(std::string const& word) {
    FrozenDatabase const frozen;
    return seeList(findList(word));
}

constexpr char kUntouched[] = "11:1:1 11:2:2 11:3:3 12:4:4 ";

// Entry 2 goes to 7 and service 4 joins while others write, at every moment that the library speaks
// of. Whatever comes first, nobody's change is lost: an edit that rests on what is no longer so
// writes nothing.
TEST_P(WriteList, WritesOnlyWhatWasSeenAtEveryMoment) {
    const struct {
        char const* others;
        Ending ending;  // when they wrote before our commit
        char const* afterwards;
    } cases[] = {
        {"UPDATE FavoriteItem SET ChannelNum = 9 WHERE FavoriteId = 11 AND ServiceId = 3",
         Ending::Overtaken, "11:1:1 11:2:2 11:9:3 12:4:4 "},
        {"DELETE FROM FavoriteItem WHERE FavoriteId = 11", Ending::Overtaken, "12:4:4 "},
        {"UPDATE Service SET Uuid = 'another' WHERE Pid = 2", Ending::Overtaken, kUntouched},
        {"UPDATE FavoriteList SET Uuid = Uuid || 'x' WHERE Pid = 11", Ending::Overtaken,
         kUntouched},
        {"UPDATE Service SET Uuid = 'another' WHERE Pid = 4", Ending::Overtaken, kUntouched},
        {"UPDATE FavoriteItem SET ChannelNum = 9 WHERE FavoriteId = 12", Ending::Written,
         "11:1:1 11:3:3 11:7:2 11:8:4 12:9:4 "},
    };
    for (auto const& c : cases) {
        int written = 0;
        for (int moment = 1, last = 1; moment <= last; ++moment) {
            make();
            SeenList const seen = see("fav1");
            WantedList wanted{seen.entries, false};
            wanted.entries[1].number = 7;
            wanted.entries.push_back(see("all").entries[3]);
            wanted.entries.back().number = 8;
            UndoStore store(file(), false);
            Other other(file(), c.others, moment);
            Written const result = writeLists({{seen, wanted}}, {store, "edit"});
            last = other.messages;
            SCOPED_TRACE(std::string(c.others) + " at " + std::to_string(moment) + " of " +
                         std::to_string(last));
            if (!other.hasWritten) {
                EXPECT_EQ(result.ending, Ending::Written) << "the lock was held";
            } else if (c.ending == Ending::Overtaken && result.ending == Ending::Overtaken) {
                EXPECT_EQ(items(), c.afterwards);
                ++written;
            } else {  // before our commit where nothing is at odds, or behind it
                EXPECT_EQ(result.ending, Ending::Written);
                EXPECT_THAT(items(),
                            testing::AnyOf(c.afterwards, testing::HasSubstr("11:7:2"), "12:4:4 "));
                written += c.ending == Ending::Written;
            }
        }
        EXPECT_GT(written, 3) << c.others << ": hardly ever in between";
    }
}

// An edit that moved entry 2 of FAV1 to 7, or hid entry 1 of "all", is taken back: with what others
// wrote in between, of which it says nothing, or not at all where they moved the same entry.
TEST_P(WriteList, TakesBackItsOwnChangeAloneAtAnyMoment) {
    const struct {
        char const* list;
        char const* others;
        bool isAtOdds;
        char const* afterwards;
    } cases[] = {
        {"fav1", "INSERT INTO FavoriteItem (ServiceId, FavoriteId, ChannelNum) VALUES (4, 11, 9)",
         false, "11:1:1 11:2:2 11:3:3 11:9:4 12:4:4 "},
        {"fav1", "UPDATE FavoriteItem SET ChannelNum = 8 WHERE FavoriteId = 11 AND ServiceId = 2",
         true, "11:1:1 11:3:3 11:8:2 12:4:4 "},
        {"all", "UPDATE FavoriteItem SET isDeleted = 1 WHERE FavoriteId = 11 AND ServiceId = 3",
         false, "11:1:1 11:2:2 11:3:3- 12:4:4 "},
    };
    for (auto const& c : cases) {
        int between = 0;
        for (int moment = 1, last = 1; moment <= last; moment += 3) {
            make();
            bool const isAll = c.list == std::string("all");
            WantedList wanted{see(c.list).entries, false};
            if (isAll)
                wanted.entries[0].deleted = true;
            else
                wanted.entries[1].number = 7;
            fs::remove_all(folder_ / ".local");
            UndoStore store(file());
            writeLists({{see(c.list), wanted}}, {store, "edit"});
            UndoStore undone(file());
            Other other(file(), c.others, moment);
            TakenBack const taken = takeBack(store.copies().back(), false, undone);
            last = other.messages;
            SCOPED_TRACE(std::string(c.others) + " at " + std::to_string(moment) + " of " +
                         std::to_string(last));
            EXPECT_EQ(items(), other.hasWritten ? c.afterwards : kUntouched);
            EXPECT_EQ(store.copies().size(), taken.isWritten() ? 2U : 1U);
            if (taken.isWritten()) {
                EXPECT_EQ(differences(taken.before, taken.after).size(), isAll ? 2U : 1U);
                between += other.hasWritten && !c.isAtOdds;
            } else {
                EXPECT_EQ(taken.conflicts.size(), 1U);
                between += c.isAtOdds;
            }
        }
        EXPECT_GT(between, 3) << c.others << ": hardly ever in between";
    }
}

// What others write to a list that the edit reaches, at whatever moment, is neither told as the
// edit's nor goes with it: entry 1 is hidden or removed, and service 4 joins FAV1 by another hand.
TEST_P(WriteList, TellsAndTakesBackNothingOfOthers) {
    constexpr char kOthers[] =
        "INSERT INTO FavoriteItem (ServiceId, FavoriteId, ChannelNum) VALUES (4, 11, 9)";
    const struct {
        char const* list;
        bool renumber;
        bool isOfTwo;  // FAV2's entry goes with the same write
    } cases[] = {{"all", false, false},  {"fav1", false, false}, {"fav1", true, false},
                 {"fav2", false, false}, {"all", false, true},   {"all", true, true}};
    for (auto const& c : cases) {
        int between = 0;
        for (int moment = 1, last = 1; moment <= last; moment += 2) {
            make();
            SeenList const seen = see(c.list);
            WantedList wanted{seen.entries, c.renumber};
            if (c.list == std::string("all"))
                wanted.entries[0].deleted = true;
            else
                wanted.entries.erase(wanted.entries.begin());
            SeenList const fav2 = see("fav2");
            fs::remove_all(folder_ / ".local");
            UndoStore store(file());
            Other other(file(), kOthers, moment);
            std::vector<ListEdit> edits = {{seen, wanted}};
            if (c.isOfTwo)
                edits.push_back({fav2, {{}, false}});
            Written const written = writeLists(edits, {store, "edit"});
            last = other.messages;
            SCOPED_TRACE(std::string(c.list) + " at " + std::to_string(moment));
            if (written.ending == Ending::Overtaken)
                continue;
            // Which is told where others have written, too.
            Snapshot const expected = other.hasWritten ? written.after : expectedLists(edits);
            EXPECT_THAT(differences(expected, written.after), testing::IsEmpty());
            for (Change const& change : differences(written.before, written.after))
                EXPECT_TRUE(change.serviceId != 4 || change.listName == "FAV2");
            bool const isGoneAgain = moment % 4 == 1;
            if (isGoneAgain)
                Query(db, "DELETE FROM FavoriteItem WHERE ServiceId = 4 AND FavoriteId = 11")
                    .next();
            UndoStore undone(file());
            takeBack(store.copies().back(), false, undone);
            std::string const fav1 = items().substr(0, items().find("12:"));
            EXPECT_EQ(fav1.find(":4 ") != std::string::npos, other.hasWritten && !isGoneAgain)
                << fav1;
            between += other.hasWritten;
        }
        EXPECT_GT(between, 1) << c.list << ": hardly ever in between";
    }
}

// Also while others give the lists, and not their uuids, new keys.
TEST_P(WriteList, BringsFlagsBackWithTheirEntry) {
    constexpr char kOthers[] =
        "BEGIN; UPDATE FavoriteList SET Pid = Pid + 10 WHERE Pid > 10;"
        "UPDATE FavoriteItem SET FavoriteId = FavoriteId + 10,"
        " OriginalFavoriteId = OriginalFavoriteId + 10 WHERE FavoriteId > 10; COMMIT";
    int between = 0;
    for (int moment = 1, last = 1; moment <= last; moment += 2) {
        make();
        Query(db,
              "UPDATE FavoriteItem SET Visible = 7, Selectable = 0, OriginalFavoriteId = 12"
              " WHERE FavoriteId = 11 AND ServiceId = 1")
            .next();
        SeenList const seen = see("fav1");
        UndoStore store(file());
        writeLists({{seen, {{seen.entries.begin() + 1, seen.entries.end()}, false}}},
                   {store, "edit"});
        UndoStore undone(file());
        Other other(file(), kOthers, moment);
        takeBack(store.copies().back(), false, undone);
        last = other.messages;
        SCOPED_TRACE(std::to_string(moment) + " of " + std::to_string(last));
        EXPECT_EQ(queryNumber(db,
                              "SELECT Visible = 7 AND Selectable = 0 AND OriginalFavoriteId = Pid"
                              " FROM FavoriteItem JOIN FavoriteList ON Uuid = 'fav2'"
                              " WHERE FavoriteId = Pid - 1 AND ServiceId = 1"),
                  1);
        between += other.hasWritten;
    }
    EXPECT_GT(between, 3) << "hardly ever in between";
}

TEST_P(WriteList, RefusesAFileThatNobodySees) {
    for (bool const isReplaced : {false, true}) {
        make();
        SeenList const seen = see("fav1");
        fs::rename(file(), file() + ".old");
        if (isReplaced)
            fs::copy_file(file() + ".old", file());
        UndoStore store(file(), false);
        try {
            writeLists({{seen, {{}, false}}}, {store, "edit"});
            FAIL() << "it was written";
        } catch (Failure const& failure) {
            EXPECT_THAT(failure.what(), testing::HasSubstr("replaced or renamed"));
        }
        fs::rename(file() + ".old", file());
        EXPECT_EQ(items(), kUntouched);
    }
}

INSTANTIATE_TEST_SUITE_P(Journals, WriteList, testing::Values("DELETE", "WAL"),
                         [](auto const& mode) { return std::string(mode.param); });

}  // namespace
