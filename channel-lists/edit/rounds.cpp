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

void leaveOutGone(std::vector<StoredItem> const& now, std::vector<StoredItem>& before,
                  std::vector<StoredItem>& after) {
    std::set<std::int64_t> gone;
    for (StoredItem const& item : after)
        gone.insert(item.service);
    for (StoredItem const& item : now)
        gone.erase(item.service);
    before.erase(
        std::remove_if(before.begin(), before.end(),
                       [&](StoredItem const& item) { return gone.count(item.service) != 0; }),
        before.end());
    after = now;
}

void add(Written const& written, Written& total) {
    if (written.ending != Ending::Written)
        return;
    total.ending = Ending::Written;
    for (ListEntries const& list : written.after)
        for (ListEntries& each : total.after)
            if (each.uuid == list.uuid) {
                each.entries = list.entries;
                each.items = list.items;
            }
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
            ListEntries& before = total.before[i];
            ListEntries& after = total.after[i];
            if (list.uuid != after.uuid)
                continue;
            if (!areOfSameServices(after.entries, list.entries)) {
                if (!keys)
                    keys.emplace();
                for (ListEntries* const each : {&before, &after}) {
                    keys->giveTo(each->entries);
                    keys->giveTo(each->items);
                }
                leaveOutGone(list.entries, before.entries, after.entries);
                before.entries = merge(after.entries, list.entries, before.entries, {}).entries;
                after.entries = list.entries;
            }
            leaveOutGone(list.items, before.items, after.items);
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
