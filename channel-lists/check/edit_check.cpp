// Edits on copies in memory: what a foreign schema makes of them cannot be told by looking at it.
#include <channellist-access/db_access.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "check/finding.h"
#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "edit/request.h"

namespace channel_lists {
namespace {

constexpr std::size_t kMostRewritten = 2000;  // entries of the All list: one is as good as all

using Entries = std::vector<Entry>;

// What went wrong with a list.
struct Complaint {
    std::string what;  // "an edit that swaps two entries failed"
    std::string viewer;

    bool operator==(Complaint const& other) const {
        return what == other.what && viewer == other.viewer;
    }
};

// A part of the schema that may be to blame.
struct Suspect {
    std::string name;  // "the trigger t on FavoriteItem"; "" for none
    std::string without;
    WayOut mend;
};

// A trial of one list, step by step.
struct Trial {
    List list;
    Entries start;
    Entries now;
    std::vector<unsigned int> spare;  // services that are not in the list
    std::string others;               // all other lists, which no step may change
};

// Numbers are handed out in the order of the list.
void swapNumbers(Entries& entries, std::size_t one, std::size_t other) {
    if (other < entries.size())
        std::swap(entries[one].number, entries[other].number);
}

Entry newEntry(Trial const& trial, std::size_t spare, std::int64_t number) {
    Entry entry;
    entry.serviceId = trial.spare[spare];
    entry.number = number;
    return entry;
}

Entries same(Trial const& trial) { return trial.now; }

Entries swapped(Trial const& trial) {
    Entries entries = trial.now;
    swapNumbers(entries, 0, 1);
    return entries;
}

Entries insertedInFront(Trial const& trial) {
    Entries entries = trial.now;
    if (trial.spare.empty())
        return entries;
    for (Entry& entry : entries)
        ++*entry.number;
    entries.insert(entries.begin(), newEntry(trial, 0, 1));
    return entries;
}

Entries appended(Trial const& trial) {
    Entries entries = trial.now;
    if (trial.spare.size() < 2)
        return entries;
    std::int64_t highest = 0;
    for (Entry const& entry : entries)
        highest = std::max(highest, *entry.number);
    entries.push_back(newEntry(trial, 1, highest + 1));
    return entries;
}

Entries withoutMiddle(Trial const& trial) {
    Entries entries = trial.now;
    if (!entries.empty())
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(entries.size() / 2));
    return entries;
}

Entries hidden(Trial const& trial) {
    Entries entries = trial.now;
    if (!entries.empty())
        entries[0].deleted = !entries[0].deleted;
    return entries;
}

// All of it at once; what joins is shown at first, and so another one is hidden.
Entries rearranged(Trial const& trial) {
    Trial after = trial;
    for (auto const step : {swapped, hidden, insertedInFront, appended, withoutMiddle})
        after.now = step(after);
    return after.now;
}

Entries empty(Trial const& /*trial*/) { return {}; }

Entries refilled(Trial const& trial) {
    Entries entries = trial.start;
    for (Entry& entry : entries)
        entry.deleted = false;
    return entries;
}

struct Step {
    char const* does;
    Entries (*wanted)(Trial const&);
};

using Steps = std::vector<Step>;

Steps const kFavSteps = {
    {"swaps two entries", swapped},         {"inserts in front", insertedInFront},
    {"appends an entry", appended},         {"removes one from the middle", withoutMiddle},
    {"hides or restores an entry", hidden}, {"takes that back", hidden},
    {"removes all entries", empty},         {"adds them again", refilled},
};
// As good as these, of a list in which nothing goes wrong: the library flushes the disk after each.
Steps const kFavStepsAtOnce = {
    {"swaps, inserts, removes and hides entries", rearranged},
    {"hides an entry", hidden},
    {"removes all entries", empty},
    {"adds them again", refilled},
};
Steps const kAllSteps = {
    {"writes entries as they are", same},
    {"swaps two entries", swapped},
    {"hides or restores an entry", hidden},
    {"takes that back", hidden},
};

// The list's rows that edits reach; without a number where it is none of 32 bits.
Entries storedEntries(List const& list) {
    Query rows(db,
               "SELECT CAST(ServiceId AS INTEGER), CASE WHEN (typeof(ChannelNum) = 'integer' OR"
               " CAST(ChannelNum AS TEXT) = CAST(CAST(ChannelNum AS INTEGER) AS TEXT))"
               " AND CAST(ChannelNum AS INTEGER)"
               " BETWEEN -2147483648 AND 2147483000 THEN CAST(ChannelNum AS INTEGER) END,"
               " ifnull(isDeleted, 0) <> 0 FROM FavoriteItem WHERE FavoriteId = ?"
               " AND (typeof(ServiceId) = 'integer'"
               " OR CAST(ServiceId AS TEXT) = CAST(CAST(ServiceId AS INTEGER) AS TEXT))"
               " ORDER BY 2, 1");
    rows.bind(std::int64_t{list.pid});
    Entries entries;
    while (rows.next()) {
        Entry entry;
        entry.serviceId = static_cast<unsigned int>(rows.number(0));
        if (!rows.isNull(1))
            entry.number = rows.number(1);
        entry.deleted = rows.number(2) != 0;
        entries.push_back(entry);
    }
    return entries;
}

// Numbers that are none, and services that stand there twice, are findings of their own.
bool canBeTried(Entries const& entries) {
    std::set<unsigned int> services;
    return std::all_of(entries.begin(), entries.end(), [&](Entry const& entry) {
        return entry.number.has_value() && services.insert(entry.serviceId).second;
    });
}

std::vector<unsigned int> spareServices(List const& list) {
    Query rows(db,
               "SELECT Pid FROM Service WHERE Pid IN (SELECT ServiceId FROM DvbService)"
               " AND Pid NOT IN (SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = ?"
               " AND ServiceId NOT NULL) LIMIT 2");
    rows.bind(std::int64_t{list.pid});
    std::vector<unsigned int> services;
    while (rows.next())
        services.push_back(static_cast<unsigned int>(rows.number(0)));
    return services;
}

// -1 where it is no number, which is a finding of its own.
std::int64_t updateTag(List const& list) {
    return queryNumber(db,
                       "SELECT CASE typeof(UpdateTag) WHEN 'integer' THEN UpdateTag ELSE -1 END"
                       " FROM FavoriteList WHERE Pid = " +
                           std::to_string(list.pid));
}

// Of all rows of other lists, in sums that change with any of them.
std::string otherLists(List const& list) {
    Query sums(db,
               "SELECT count(*), total(Id % 65521 * ChannelNum), total(Id % 65521 * ServiceId),"
               " total(Id % 65521 * (FavoriteId * 2 + (isDeleted IS NOT 0)))"
               " FROM FavoriteItem WHERE FavoriteId IS NOT ?");
    sums.bind(std::int64_t{list.pid}).next();
    std::string text;
    for (int i = 0; i < sums.columns(); ++i)
        text += sums.text(i) + " ";
    return text;
}

std::set<unsigned int> servicesOf(Entries const& entries) {
    std::set<unsigned int> services;
    for (Entry const& entry : entries)
        services.insert(entry.serviceId);
    return services;
}

// Whether FavTag says of the services that joined and left what it has to.
bool areMarked(List const& list, Entries const& before, Entries const& after) {
    std::string const tag =
        list.favIndex == 1 ? "FavTag" : "FavTag" + std::to_string(list.favIndex);
    Query marked(db, "SELECT CAST(" + tag + " AS INTEGER) IS 1, CAST(ifnull(" + tag +
                         ", 0) AS INTEGER) = 0 FROM Service WHERE Pid = ?");
    std::set<unsigned int> const old = servicesOf(before), now = servicesOf(after);
    auto const isWrong = [&](unsigned int service, int column) {
        marked.reset();
        return marked.bind(std::int64_t{service}).next() && marked.number(column) == 0;
    };
    return std::none_of(now.begin(), now.end(),
                        [&](unsigned int id) { return old.count(id) == 0 && isWrong(id, 0); }) &&
           std::none_of(old.begin(), old.end(),
                        [&](unsigned int id) { return now.count(id) == 0 && isWrong(id, 1); });
}

bool isSame(Entries one, Entries other) {
    auto const less = [](Entry const& a, Entry const& b) {
        return std::tie(a.serviceId, a.number) < std::tie(b.serviceId, b.number);
    };
    std::sort(one.begin(), one.end(), less);
    std::sort(other.begin(), other.end(), less);
    return one == other;
}

std::vector<std::string> requestFor(Trial const& trial, Entries const& wanted) {
    if (trial.list.favIndex != 0)
        return favListRequest(trial.list, wanted);
    if (wanted == trial.now) {
        Entries first = wanted;
        first.resize(std::min(first.size(), kMostRewritten));
        return favListRequest(trial.list, first);
    }
    return otherListRequest(trial.list, trial.now, wanted, false);
}

// What the library's statements are refused for: it hands on SQLite's code alone.
std::string reasonOf(Trial const& trial, Entries const& wanted) {
    std::set<unsigned int> const stored = servicesOf(trial.now), kept = servicesOf(wanted);
    try {
        auto const run = [&](char const* sql, std::initializer_list<std::int64_t> values) {
            Query query(db, sql);
            for (std::int64_t const value : values)
                query.bind(value);
            query.next();
        };
        for (Entry const& entry : wanted) {
            if (stored.count(entry.serviceId) != 0)
                run("UPDATE FavoriteItem SET ChannelNum = ?, isDeleted = ? WHERE FavoriteId = ?"
                    " AND ServiceId = ?",
                    {*entry.number, entry.deleted ? 1 : 0, trial.list.pid, entry.serviceId});
            else
                run("INSERT INTO FavoriteItem (ServiceId, ChannelNum, FavoriteId,"
                    " OriginalFavoriteId) VALUES (?, ?, ?, ?)",
                    {entry.serviceId, *entry.number, trial.list.pid, trial.list.pid});
        }
        for (unsigned int const service : stored)
            if (kept.count(service) == 0)
                run("DELETE FROM FavoriteItem WHERE FavoriteId = ? AND ServiceId = ?",
                    {trial.list.pid, service});
        for (char const* tag : {"FavTag", "FavTag2", "FavTag3", "FavTag4"})
            for (unsigned int const service : kept)
                run(("UPDATE Service SET " + std::string(tag) + " = 1 WHERE Pid = ?").c_str(),
                    {service});
    } catch (Failure const& failure) {
        std::string const sentence = failure.what();
        auto const reason = sentence.rfind("cannot be read: ");
        return reason == std::string::npos ? ": " + sentence : sentence.substr(reason + 14);
    }
    return "";
}

// Nothing when the step is done as it has to be.
std::vector<Complaint> complaintsOf(Step const& step, Trial& trial) {
    Entries const wanted = step.wanted(trial);
    if ((trial.list.favIndex != 0 && wanted == trial.now) || (wanted.empty() && trial.now.empty()))
        return {};
    std::string const edit = std::string("an edit that ") + step.does;
    bool const isFav = trial.list.favIndex != 0;
    std::int64_t const tag = updateTag(trial.list);
    try {
        submit(requestFor(trial, wanted));
    } catch (Failure const&) {
        if (TimeLimit::isReached())
            throw;  // the other lists' edits would not end either
        return {{edit + " failed" + reasonOf(trial, wanted), "the list cannot be edited"}};
    }
    std::vector<Complaint> complaints;
    if (!isSame(storedEntries(trial.list), wanted))
        complaints.push_back({edit + " did not write what it was told",
                              "entries are lost, stay, are hidden, or stand elsewhere"});
    if (isFav && otherLists(trial.list) != trial.others)
        complaints.push_back(
            {edit + " changed other lists", "other lists gain, lose or move entries with it"});
    if (isFav && !areMarked(trial.list, trial.now, wanted))
        complaints.push_back({edit + " did not write FavTag as it has to",
                              "favourites are not marked as such, or stay marked"});
    if (tag >= 0 && updateTag(trial.list) == tag)
        complaints.push_back({edit + " left UpdateTag as it was",
                              "edits do not show until the set is switched off and on"});
    trial.now = wanted;
    return complaints;
}

// Of the first step that goes wrong. `without` is left out of the copy's schema.
std::vector<Complaint> trySteps(List const& list, Steps const& steps, std::string const& without) {
    FrozenDatabase const copy;
    if (!without.empty() &&
        sqlite3_exec(db, without.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        return {};
    Trial trial{list, storedEntries(list), {}, {}, list.favIndex != 0 ? otherLists(list) : ""};
    if (!canBeTried(trial.start))
        return {};
    trial.now = trial.start;
    trial.spare = spareServices(list);
    for (Step const& step : steps) {
        std::vector<Complaint> complaints = complaintsOf(step, trial);
        if (!complaints.empty())
            return complaints;
    }
    return {};
}

std::vector<Complaint> tryList(List const& list, std::string const& without) {
    if (list.favIndex == 0)
        return trySteps(list, kAllSteps, without);
    std::vector<Complaint> const atOnce = trySteps(list, kFavStepsAtOnce, without);
    if (atOnce.empty())
        return {};
    std::vector<Complaint> const singly = trySteps(list, kFavSteps, without);
    return singly.empty() ? atOnce : singly;
}

std::string quotedName(std::string const& name) { return '"' + doubled(name, '"') + '"'; }

// Triggers first: an index seldom does harm.
std::vector<Suspect> suspects() {
    Query rows(db,
               "SELECT type, name, tbl_name, sql FROM sqlite_master WHERE sql NOT NULL"
               " AND (type = 'trigger' OR type = 'index' AND lower(tbl_name) IN ('favoriteitem',"
               " 'favoritelist', 'service')) ORDER BY type DESC, sql NOT LIKE '%UNIQUE%'");
    std::vector<Suspect> found;
    while (rows.next()) {
        std::string const type = rows.text(0), sql = rows.text(3);
        std::string const drop =
            (type == "trigger" ? "DROP TRIGGER " : "DROP INDEX ") + quotedName(rows.text(1));
        Suspect suspect{"the " + type + " " + rows.text(1) + " on " + rows.text(2),
                        drop,
                        {drop, "whether anything else needs the " + type}};
        if (auto const unique = sql.find(" UNIQUE ");
            type == "index" && unique != std::string::npos)
            suspect.mend.sql += "; " + sql.substr(0, unique) + sql.substr(unique + 7);
        found.push_back(suspect);
    }
    return found;
}

// What the complaint does not stand without.
Suspect culprit(List const& list, Complaint const& complaint) {
    for (Suspect const& suspect : suspects()) {
        std::vector<Complaint> const others = tryList(list, suspect.without);
        if (std::find(others.begin(), others.end(), complaint) == others.end())
            return suspect;
    }
    return {"", "",
            decision("change the default, constraint or type of the column, as the message says")};
}

// The lists in which the same goes wrong, if not with the same step: the first speaks for all.
struct Shared {
    Complaint complaint;
    std::vector<List> lists;
};

Finding findingOf(Shared const& shared) {
    List const& first = shared.lists.front();
    std::string pids, names;
    for (List const& list : shared.lists) {
        pids += (pids.empty() ? "" : ", ") + std::to_string(list.pid);
        names += (names.empty() ? "" : ", ") + displayName(list);
    }
    Suspect const suspect = culprit(first, shared.complaint);
    return {"edit",
            Severity::Edits,
            "FavoriteList " + pids,
            "on a copy of " + names + ", " + shared.complaint.what +
                (suspect.name.empty() ? "" : ", because of " + suspect.name),
            shared.complaint.viewer,
            suspect.mend};
}

}  // namespace

void checkEdits(Findings& findings) {
    examine(
        "edit", findings,
        [&] {
            std::vector<List> const lists = allLists();
            if (std::count_if(
                    lists.begin(), lists.end(),
                    [](List const& list) { return list.favIndex != 0; }) != 4)
                return;
            std::vector<Shared> shared;
            for (List const& list : lists) {
                if (list.uuid.empty() || (list.favIndex == 0 && !isAllList(list)))
                    continue;
                for (Complaint const& complaint : tryList(list, "")) {
                    auto const known = std::find_if(
                        shared.begin(), shared.end(),
                        [&](Shared const& each) {
                            return each.complaint.viewer == complaint.viewer;
                        });
                    if (known == shared.end())
                        shared.push_back({complaint, {list}});
                    else
                        known->lists.push_back(list);
                }
            }
            for (Shared const& each : shared)
                findings.push_back(findingOf(each));
        });
}

}  // namespace channel_lists
