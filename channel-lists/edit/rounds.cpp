#include "edit/rounds.h"

#include <algorithm>
#include <optional>
#include <set>

#include "edit/merge.h"
#include "lists/current_keys.h"

namespace channel_lists {
namespace {

// What others removed is in neither side any more.
void leaveOutGone(std::vector<Entry> const& now, std::vector<Entry>& before,
                  std::vector<Entry>& after) {
    std::set<unsigned int> held, gone;
    for (Entry const& entry : now)
        held.insert(entry.serviceId);
    for (Entry const& entry : after)
        if (held.count(entry.serviceId) == 0)
            gone.insert(entry.serviceId);
    for (std::vector<Entry>* entries : {&before, &after})
        entries->erase(
            std::remove_if(entries->begin(), entries->end(),
                           [&](Entry const& entry) { return gone.count(entry.serviceId) != 0; }),
            entries->end());
}

// And of its items those of entries that are gone from it.
void leaveOutGone(std::vector<Entry> const& old, std::vector<Entry> const& now,
                  std::vector<StoredItem>& items) {
    std::set<std::int64_t> gone;
    for (Entry const& entry : old)
        gone.insert(entry.serviceId);
    for (Entry const& entry : now)
        gone.erase(entry.serviceId);
    items.erase(
        std::remove_if(items.begin(), items.end(),
                       [&](StoredItem const& item) { return gone.count(item.service) != 0; }),
        items.end());
}

void add(Written const& written, Written& total) {
    if (written.ending != Ending::Written)
        return;
    total.ending = Ending::Written;
    for (ListEntries const& list : written.after)
        for (ListEntries& each : total.after)
            if (each.uuid == list.uuid)
                each.entries = list.entries;
}

}  // namespace

bool writeRound(std::vector<ListEdit> edits, Written& total) {
    UndoStore off("", false);
    try {
        Written const written = writeLists(std::move(edits), {off, ""});
        add(written, total);
        return !written.overtaken;
    } catch (PartlyWritten const& partly) {
        add(partly.written, total);
        throw;
    }
}

void follow(Snapshot const& now, Written& total) {
    std::optional<CurrentKeys> keys;
    for (std::size_t i = 0; i < total.after.size(); ++i)
        for (ListEntries const& list : now) {
            std::vector<Entry>& after = total.after[i].entries;
            if (list.uuid != total.after[i].uuid || areOfSameServices(after, list.entries))
                continue;
            std::vector<Entry>& before = total.before[i].entries;
            if (!keys)
                keys.emplace();
            keys->giveTo(before);
            keys->giveTo(after);
            keys->giveTo(total.before[i].items);
            std::vector<Entry> const old = before;
            leaveOutGone(list.entries, before, after);
            before = merge(after, list.entries, before, {}).entries;
            leaveOutGone(old, before, total.before[i].items);
            after = list.entries;
        }
    addMissing(now, total.before);
    addMissing(now, total.after);
}

void keepRounds(Written const& total, UndoStore& store) {
    if (total.ending != Ending::Written)
        return;
    store.correct(total.before);
    store.keepOnlyChanged(total.after);
}

}  // namespace channel_lists
