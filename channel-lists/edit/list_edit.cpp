#include "edit/list_edit.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <tuple>

namespace channel_lists {
namespace {

// As the library renumbers: those that are not hidden get 1, 2, 3 in their order, around OTT
// channels; the numbers of items that it does not deliver count.
void closeGaps(std::vector<Entry>& entries, std::set<std::int64_t> const& reserved,
               std::multiset<std::int64_t> const& undelivered) {
    std::stable_sort(entries.begin(), entries.end(),
                     [](Entry const& a, Entry const& b) { return a.number < b.number; });
    std::int64_t last = 0;
    auto const next = [&] {
        do {
            ++last;
        } while (reserved.count(last) != 0);
        return last;
    };
    auto other = undelivered.begin();
    for (Entry& entry : entries) {
        if (entry.deleted)
            continue;
        for (; other != undelivered.end() && *other < entry.number; ++other)
            next();
        entry.number = next();
    }
}

// Of services that are there, and not hidden.
std::multiset<std::int64_t> undeliveredNumbers(ListEntries const& list) {
    std::set<std::int64_t> held;
    for (Entry const& entry : list.entries)
        held.insert(entry.serviceId);
    std::multiset<std::int64_t> numbers;
    for (StoredItem const& item : list.items)
        if (held.count(item.service) == 0 && !item.uuid.empty() && item.hidden.value_or(0) == 0)
            numbers.insert(item.number.value_or(0));
    return numbers;
}

// A request for FAV1 to FAV4 drops what the library does not deliver.
std::vector<StoredItem> delivered(ListEntries const& list) {
    std::set<std::int64_t> held;
    for (Entry const& entry : list.entries)
        held.insert(entry.serviceId);
    std::vector<StoredItem> items;
    std::copy_if(list.items.begin(), list.items.end(), std::back_inserter(items),
                 [&](StoredItem const& item) { return held.count(item.service) != 0; });
    return items;
}

std::multiset<std::pair<unsigned int, std::string>> uuidsOf(std::vector<Entry> const& entries) {
    std::multiset<std::pair<unsigned int, std::string>> uuids;
    for (Entry const& entry : entries)
        uuids.emplace(entry.serviceId, entry.uuid);
    return uuids;
}

}  // namespace

bool areSame(std::vector<Entry> const& one, std::vector<Entry> const& other) {
    using Place = std::tuple<unsigned int, std::optional<std::int64_t>, bool>;
    auto const placesOf = [](std::vector<Entry> const& entries) {
        std::multiset<Place> places;
        for (Entry const& entry : entries)
            places.emplace(entry.serviceId, entry.number, entry.deleted);
        return places;
    };
    return one == other || placesOf(one) == placesOf(other);
}

bool areOfSameServices(std::vector<Entry> const& one, std::vector<Entry> const& other) {
    return areSame(one, other) && uuidsOf(one) == uuidsOf(other);
}

void expect(ListEdit const& edit, Snapshot& lists) {
    SeenList const& seen = edit.seen;
    std::vector<Entry> const& entries = edit.wanted.entries;
    bool const isFav = seen.list.favIndex != 0;
    std::map<unsigned int, bool> marks;  // that an edit of another list copies to FAV1 to FAV4
    std::set<unsigned int> turned;       // where it renumbers those that hold one of them
    for (std::size_t i = 0; !isFav && i < entries.size(); ++i) {
        if (!(entries[i] == seen.entries[i]))
            marks[entries[i].serviceId] = entries[i].deleted;
        if (entries[i].deleted != seen.entries[i].deleted && edit.wanted.renumber)
            turned.insert(entries[i].serviceId);
    }
    for (ListEntries& list : lists) {
        if (list.uuid == seen.list.uuid) {
            bool const isRequested = isFav && !areSame(entries, list.entries);
            list.entries = entries;
            if (isRequested)
                list.items = delivered(list);
            if (isFav && edit.wanted.renumber)
                closeGaps(list.entries, seen.reserved, undeliveredNumbers(list));
            continue;
        }
        bool closesGaps = false;
        for (Entry& entry : list.entries) {
            if (auto const mark = marks.find(entry.serviceId); list.isFav && mark != marks.end())
                entry.deleted = mark->second;
            closesGaps = closesGaps || (list.isFav && turned.count(entry.serviceId) != 0);
        }
        if (auto const reserved = seen.favReserved.find(list.uuid);
            closesGaps && reserved != seen.favReserved.end())
            closeGaps(list.entries, reserved->second, undeliveredNumbers(list));
    }
}

Snapshot reachedBy(std::vector<ListEdit> const& edits) {
    Snapshot lists;
    for (ListEdit const& edit : edits)
        addMissing(edit.seen.reached, lists);
    return lists;
}

Snapshot expectedLists(ListEdit const& edit) { return expectedLists(std::vector{edit}); }

Snapshot expectedLists(std::vector<ListEdit> const& edits) {
    Snapshot lists = reachedBy(edits);
    for (ListEdit const& edit : edits)
        expect(edit, lists);
    return lists;
}

}  // namespace channel_lists
