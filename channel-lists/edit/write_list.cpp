#include "edit/write_list.h"

#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <map>
#include <set>

#include "database/frozen_database.h"
#include "database/query.h"
#include "edit/commit_guard.h"
#include "edit/only_writer.h"
#include "edit/renumbering.h"
#include "edit/request.h"
#include "failure.h"
#include "library_messages/library_messages.h"
#include "listener.h"
#include "text/display_text.h"

namespace channel_lists {
namespace {

constexpr int kMostTries = 50;     // of an edit beside others of the list
constexpr int kMostCommits = 100;  // beside writers of anything else
constexpr int kReadAgain = 3;      // what is written already: nobody waits for long

// Others that wait for their turn, too, wait for another time.
void giveWay(int attempt) {
    unsigned char random = 0;
    sqlite3_randomness(sizeof random, &random);
    sqlite3_sleep(1 + random * std::min(attempt, 20) / 64);
}

std::vector<std::string> requestFor(SeenList const& seen, WantedList const& wanted) {
    return seen.list.favIndex != 0
               ? favListRequest(seen.list, wanted.entries)
               : otherListRequest(seen.list, seen.entries, wanted.entries, wanted.renumber);
}

// Several reads of one state of the file.
class ReadTransaction {
  public:
    ReadTransaction() { Query(db, "BEGIN").next(); }
    ~ReadTransaction() { sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr); }
    ReadTransaction(ReadTransaction const&) = delete;
    ReadTransaction& operator=(ReadTransaction const&) = delete;
};

// A service that joins the list is named by its key, which a scan may have given to another one.
bool areStillTheSame(SeenList const& seen, std::vector<Entry> const& wanted) {
    std::set<unsigned int> held;
    for (Entry const& entry : seen.entries)
        held.insert(entry.serviceId);
    // As a C string, which is how the library delivers it; "" of none.
    Query service(db, "SELECT (SELECT printf('%s', Uuid) FROM Service WHERE Pid = ?)");
    return std::all_of(wanted.begin(), wanted.end(), [&](Entry const& entry) {
        service.reset();
        return held.count(entry.serviceId) != 0 ||
               (service.bind(std::int64_t{entry.serviceId}).next() &&
                service.text(0) == entry.uuid);
    });
}

bool stillStands(ListEdit const& edit, OnlyWriter& writer) {
    return waitWhileLocked([&] {
        ReadTransaction const oneState;
        Query(db, "SELECT 1 FROM sqlite_master").next();  // it begins with its first read
        writer.look();
        return storedState(edit.seen.list.uuid) == edit.seen.stored &&
               areStillTheSame(edit.seen, edit.wanted.entries);
    });
}

// False when the list is another one by now. What others write elsewhere in the file makes SQLite
// refuse the commit, too; then the list is looked at again.
template <class Commit>
bool commitIfUnchanged(ListEdit const& edit, OnlyWriter& writer, Commit commit) {
    for (int attempt = 1; attempt <= kMostCommits; ++attempt) {
        if (!stillStands(edit, writer))
            return false;
        CommitGuard const guard;
        try {
            commit();
            writer.hasCommitted(guard.version());
            return true;
        } catch (Failure const&) {
            if (channel_database::isMoved(db))
                throw Failure("the database was replaced or renamed meanwhile; nothing is written");
            if (!guard.hasRefused() && stillStands(edit, writer))
                throw;
        }
        forgetMessages();
        giveWay(attempt);
    }
    throw Failure(
        "other processes write to the database all the time, or its disk is full; nothing is "
        "written");
}

// A service that joins a FAV list is shown at first.
std::vector<std::size_t> joiningHidden(SeenList const& seen, std::vector<Entry> const& wanted) {
    std::set<unsigned int> held;
    for (Entry const& entry : seen.entries)
        held.insert(entry.serviceId);
    std::vector<std::size_t> found;
    for (std::size_t i = 0; seen.list.favIndex != 0 && i < wanted.size(); ++i)
        if (wanted[i].deleted && held.count(wanted[i].serviceId) == 0)
            found.push_back(i);
    return found;
}

// As the list is by then.
void hideJoined(List const& list, std::vector<Entry> const& joined, OnlyWriter& writer) {
    for (int attempt = 1; attempt <= kMostTries; ++attempt) {
        SeenList seen;
        {
            FrozenDatabase const frozen;
            seen = seeList(list);
        }
        std::vector<Entry> entries = seen.entries;
        for (Entry const& each : joined)
            for (Entry& entry : entries)  // others may have moved it, or given it another key
                if (each.uuid.empty() ? entry.serviceId == each.serviceId : entry.uuid == each.uuid)
                    entry.deleted = true;
        if (entries == seen.entries)
            return;
        std::vector<std::string> const request = favListRequest(list, entries);
        if (commitIfUnchanged({std::move(seen), {std::move(entries), false}}, writer,
                              [&] { submit(request); }))
            return;
        giveWay(attempt);
    }
    throw Failure("others change " + displayName(list) + " all the time");
}

// What is committed is written, whatever fails after it.
template <class Step>
void afterTheCommit(std::string const& what, Step step) {
    try {
        step();
    } catch (std::exception const& error) {
        listener().note("the list is written, but " + what + ": " + error.what());
    }
}

// The lists as this write left them: what stands there, unless others have written, too.
Snapshot writtenLists(Snapshot const& expected, OnlyWriter const& writer) {
    sqlite3* const file = db;
    Snapshot lists;
    try {
        FrozenDatabase const frozen(kReadAgain);
        if (!writer.isAlone(fileVersion(file)))
            return expected;
        for (ListEntries const& list : expected)
            lists.push_back({list.uuid, list.listName, readEntries(list.uuid).entries, list.isFav,
                             storedItems(list.uuid)});
    } catch (Failure const& failure) {
        listener().note(std::string("the list is written, but cannot be read again: ") +
                        failure.what());
        return expected;
    }
    return lists;
}

void noteUndelivered(SeenList const& seen) {
    if (seen.list.favIndex != 0 && seen.undelivered > 0) {
        listener().note(displayName(seen.list) + " holds " + std::to_string(seen.undelivered) +
                        " items that it cannot show; the edit drops them");
    }
}

// One list.
Ending writeOne(ListEdit const& edit, OnlyWriter& writer) {
    SeenList const& seen = edit.seen;
    std::vector<Entry> const& entries = edit.wanted.entries;
    bool const closesGaps = edit.wanted.renumber && seen.list.favIndex != 0;
    if (areSame(entries, seen.entries)) {
        bool hadGaps = false;
        if (closesGaps && !commitIfUnchanged(edit, writer, [&] { hadGaps = renumber(seen.list); }))
            return Ending::Overtaken;
        return hadGaps ? Ending::Written : Ending::NothingToDo;
    }
    std::vector<std::string> const request = requestFor(seen, edit.wanted);
    if (!commitIfUnchanged(edit, writer, [&] { submit(request); }))
        return Ending::Overtaken;
    noteUndelivered(seen);
    std::vector<Entry> joined;
    for (std::size_t const i : joiningHidden(seen, entries))
        joined.push_back(entries[i]);
    if (!joined.empty())
        afterTheCommit("what joins hidden is shown",
                       [&] { hideJoined(seen.list, joined, writer); });
    if (closesGaps)
        afterTheCommit("it could not be renumbered", [&] {
            if (renumber(seen.list))
                writer.hasCommittedUnseen();
        });
    return Ending::Written;
}

// The library finds the items of a FAV list by their services: of two, both get what the last one
// is to be.
void noteTwins(ListEntries const& expected, ListEntries const& written) {
    std::set<unsigned int> services;
    bool const hasTwins =
        std::any_of(expected.entries.begin(), expected.entries.end(),
                    [&](Entry const& entry) { return !services.insert(entry.serviceId).second; });
    if (expected.isFav && hasTwins && !areSame(expected.entries, written.entries))
        listener().note(expected.listName +
                        " names a service twice, and not all of it is as it was to be; "
                        "\"channellist check\" tells more");
}

bool isAsked(ListEdit const& edit) {
    return !areSame(edit.wanted.entries, edit.seen.entries) ||
           (edit.wanted.renumber && edit.seen.list.favIndex != 0);
}

bool areSame(Snapshot const& before, Snapshot const& after) {
    return before.size() == after.size() && std::equal(
                                                before.begin(), before.end(), after.begin(),
                                                [](ListEntries const& a, ListEntries const& b) {
                                                    return areSame(a.entries, b.entries);
                                                });
}

// Edits of lists that are none of FAV1 to FAV4 first: they mark these, too.
class Write {
  public:
    Write(std::vector<ListEdit> edits, Keeping const& keeping)
        : edits_(std::move(edits)), keeping_(keeping), writer_(statesOf(edits_)) {
        auto const favs = std::stable_partition(
            edits_.begin(), edits_.end(),
            [](ListEdit const& edit) { return edit.seen.list.favIndex == 0; });
        others_ = static_cast<std::size_t>(favs - edits_.begin());
        result_.before = result_.after = expected_ = reachedBy(edits_);
    }

    Written run() {
        for (std::size_t i = 0; i < edits_.size() && !result_.overtaken; ++i) {
            try {
                writeNext(i);
            } catch (std::exception const& error) {
                if (result_.ending != Ending::Written)
                    throw;
                end();
                throw PartlyWritten(displayName(edits_[i].seen.list) + ": " + error.what() +
                                        "; written before: " + joined(names_),
                                    result_);
            }
        }
        end();
        return result_;
    }

  private:
    static std::map<std::string, std::string> statesOf(std::vector<ListEdit> const& edits) {
        std::map<std::string, std::string> states;
        for (ListEdit const& edit : edits)
            states.insert(edit.seen.reachedStates.begin(), edit.seen.reachedStates.end());
        return states;
    }

    // Behind the edits of other lists; false when they are not what these made of them.
    bool seeFavListsAgain() {
        FrozenDatabase const frozen;
        for (std::size_t i = others_; i < edits_.size(); ++i) {
            SeenList& seen = edits_[i].seen;
            SeenList now = seeList(seen.list);
            auto const list =
                std::find_if(expected_.begin(), expected_.end(),
                             [&](ListEntries const& each) { return each.uuid == now.list.uuid; });
            if (!areOfSameServices(list->entries, now.entries)) {
                result_.overtaken = now.list;
                return false;
            }
            now.undelivered = seen.undelivered;
            seen = std::move(now);
        }
        return true;
    }

    void writeNext(std::size_t index) {
        if (index == others_ && result_.ending == Ending::Written && !seeFavListsAgain())
            return;
        ListEdit const& edit = edits_[index];
        if (!isAsked(edit))
            return;
        if (!isKept_)
            keeping_.store.keepLists(keeping_.command, result_.before, expectedLists(edits_));
        isKept_ = true;
        Ending const ending = writeOne(edit, writer_);
        if (ending == Ending::Overtaken)
            result_.overtaken = edit.seen.list;
        if (ending != Ending::Written)
            return;
        result_.ending = Ending::Written;
        names_.push_back(displayName(edit.seen.list));
        expect(edit, expected_);
    }

    void end() {
        if (result_.ending == Ending::Written)
            result_.after = writtenLists(expected_, writer_);
        for (std::size_t i = 0; i < expected_.size(); ++i)
            noteTwins(expected_[i], result_.after[i]);
        if (areSame(result_.before, result_.after)) {  // there were no gaps
            keeping_.store.discard();
            result_.ending = !result_.overtaken ? Ending::NothingToDo : Ending::Overtaken;
        } else {
            keeping_.store.keepOnlyChanged(result_.after);
        }
    }

    std::vector<ListEdit> edits_;
    Keeping const& keeping_;
    OnlyWriter writer_;
    std::size_t others_ = 0;  // how many of the edits are of other lists
    Written result_;
    Snapshot expected_;  // of what is written so far
    bool isKept_ = false;
    std::vector<std::string> names_;  // of the lists that are written
};

}  // namespace

Written writeLists(std::vector<ListEdit> edits, Keeping const& keeping) {
    return Write(std::move(edits), keeping).run();
}

Written writeAgainAndAgain(std::function<SeenList()> const& see,
                           std::function<WantedList(SeenList const&)> const& want,
                           Keeping const& keeping) {
    std::string name;
    for (int attempt = 1; attempt <= kMostTries; ++attempt) {
        SeenList seen = see();
        name = displayName(seen.list);
        WantedList wanted = want(seen);
        Written written = writeLists({{std::move(seen), std::move(wanted)}}, keeping);
        if (written.ending != Ending::Overtaken)
            return written;
        giveWay(attempt);
    }
    throw Failure("others change " + name + " all the time; nothing is written");
}

}  // namespace channel_lists
