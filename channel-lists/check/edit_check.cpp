// Edits on a copy in memory: what a foreign schema makes of them cannot be told by looking at it.
#include <channellist-access/db_access.h>

#include <algorithm>

#include "check/finding.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "edit/request.h"
#include "library_messages/library_messages.h"

namespace channel_lists {
namespace {

constexpr std::size_t kMostEntries = 2000;  // of the All list: one is as good as all

void addFinding(List const& list, std::string const& what, std::string const& viewer,
                Findings& findings) {
    findings.push_back({"edit", Severity::Edits, "FavoriteList " + std::to_string(list.pid), what,
                        viewer,
                        "drop the trigger or constraint, or give the columns of FavoriteItem"
                        " defaults"});
}

// In the order of keys: entries of one number may change places.
std::vector<Entry> sorted(std::vector<Entry> entries) {
    std::sort(entries.begin(), entries.end(), [](Entry const& a, Entry const& b) {
        return std::tie(a.serviceId, a.number) < std::tie(b.serviceId, b.number);
    });
    return entries;
}

bool canBeWritten(std::vector<Entry> const& entries) {
    return std::all_of(
        entries.begin(), entries.end(),
        [](Entry const& entry) { return entry.number.has_value(); });
}

// -1 where it is no number, which is a finding of its own.
std::int64_t updateTag(List const& list) {
    return queryNumber(db,
                       "SELECT CASE typeof(UpdateTag) WHEN 'integer' THEN UpdateTag ELSE -1 END"
                       " FROM FavoriteList WHERE Pid = " +
                           std::to_string(list.pid));
}

std::int64_t entriesElsewhere(List const& list) {
    return queryNumber(db, "SELECT count(*) FROM FavoriteItem WHERE FavoriteId IS NOT " +
                               std::to_string(list.pid));
}

bool areMarked(List const& list) {
    std::string const tag =
        list.favIndex == 1 ? "FavTag" : "FavTag" + std::to_string(list.favIndex);
    return queryNumber(db, "SELECT count(*) FROM Service WHERE " + tag +
                               " IS NOT 1 AND Pid IN (SELECT ServiceId FROM FavoriteItem"
                               " WHERE FavoriteId = " +
                               std::to_string(list.pid) + ")") == 0;
}

// Some service, for a list that holds none.
std::vector<Entry> anyService() {
    Entry entry;
    entry.number = 1;
    entry.serviceId = static_cast<unsigned int>(
        queryNumber(db, "SELECT min(ServiceId) FROM DvbService JOIN Service ON Pid = ServiceId"));
    return entry.serviceId == 0 ? std::vector<Entry>() : std::vector<Entry>{entry};
}

// Emptied, and written back.
void tryFavList(List const& list, Findings& findings) {
    std::vector<Entry> before = readEntries(list.uuid).entries;
    if (!canBeWritten(before))
        return;  // which is a finding of its own
    if (before.empty())
        before = anyService();
    std::int64_t const tag = updateTag(list);
    std::int64_t const elsewhere = entriesElsewhere(list);
    submit(favListRequest(list, {}));
    if (tag >= 0 && updateTag(list) == tag) {
        addFinding(list,
                   "an edit of " + displayName(list) + " in a copy left its UpdateTag as it was",
                   "edits do not show until the set is switched off and on", findings);
    }
    if (!readEntries(list.uuid).entries.empty()) {
        addFinding(list,
                   "an edit that empties " + displayName(list) + " in a copy left entries in it",
                   "removed favourites stay", findings);
    }
    submit(favListRequest(list, before));  // what joins is shown at first
    submit(favListRequest(list, before));  // which updates entries rather than adding them
    if (entriesElsewhere(list) != elsewhere) {
        addFinding(list, "an edit of " + displayName(list) + " in a copy changed other lists",
                   "other lists gain or lose entries with it", findings);
    }
    if (!areMarked(list)) {
        addFinding(
            list,
            "an edit of " + displayName(list) + " in a copy did not mark its services in FavTag",
            "added favourites are not marked as such", findings);
    }
    if (sorted(readEntries(list.uuid).entries) != sorted(before)) {
        addFinding(list,
                   "an edit of " + displayName(list) + " in a copy did not write what it was told",
                   "added favourites are hidden at once, lost, or stand elsewhere", findings);
    }
}

void tryAllList(List const& list, Findings& findings) {
    std::vector<Entry> entries = readEntries(list.uuid).entries;
    entries.resize(std::min(entries.size(), kMostEntries));
    if (entries.empty() || !canBeWritten(entries))
        return;
    submit(favListRequest(list, entries));  // every entry, as it stands
    std::vector<Entry> after = readEntries(list.uuid).entries;
    after.resize(std::min(after.size(), kMostEntries));
    if (after != entries) {
        addFinding(list, "an edit of the All list in a copy did not write what it was told",
                   "edits of the list change more or less than asked", findings);
    }
}

}  // namespace

void checkEdits(Findings& findings) {
    examine(
        "edit", findings,
        [&] {
            std::vector<List> const lists = allLists();
            auto const favLists = std::count_if(
                lists.begin(), lists.end(), [](List const& list) { return list.favIndex != 0; });
            for (List const& list : lists) {
                if (favLists != 4 || list.uuid.empty() || (list.favIndex == 0 && !isAllList(list)))
                    continue;
                try {
                    (list.favIndex != 0 ? tryFavList : tryAllList)(list, findings);
                } catch (Failure const&) {
                    if (TimeLimit::isReached())
                        throw;  // the other lists' edits would not end either
                    addFinding(
                        list,
                        "an edit of " + displayName(list) + " in a copy failed: " + lastMessage(),
                        displayName(list) + " cannot be edited", findings);
                }
            }
        });
}

}  // namespace channel_lists
