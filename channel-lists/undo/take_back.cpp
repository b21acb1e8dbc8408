#include "undo/take_back.h"

#include <channellist-access/db_access.h>

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>

#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "edit/merge.h"
#include "edit/rounds.h"
#include "edit/write_list.h"
#include "failure.h"
#include "lists/text_services.h"
#include "text/display_text.h"
#include "undo/joining_items.h"

namespace channel_lists {
namespace {

constexpr int kMostTries = 20;

ListEntries const* withUuid(Snapshot const& lists, std::string const& uuid) {
    auto const found = std::find_if(lists.begin(), lists.end(),
                                    [&](ListEntries const& each) { return each.uuid == uuid; });
    return found == lists.end() ? nullptr : &*found;
}

// Finds kept entries in the database as it is now, whatever keys a scan gave to their services.
class KeptServices {
  public:
    KeptServices(std::vector<Entry> const& stored, std::vector<Entry> const& all)
        : services_(stored, all) {}

    std::optional<Entry> find(Entry const& kept, std::string& error) {
        Entry entry = kept;
        same_.reset();
        if (!kept.uuid.empty() && same_.bind(kept.uuid).next()) {
            entry.serviceId = static_cast<unsigned int>(same_.number(0));
            if (!same_.next())  // else only what else is known tells them apart
                return entry;
        }
        TextLine line;
        line.name = kept.name;
        line.triplet = kept.triplet;
        line.key = kept.serviceId;
        Entry const* const service = services_.find(line, error);
        if (service == nullptr)
            return std::nullopt;
        entry.serviceId = service->serviceId;
        entry.name = service->name;
        entry.uuid = service->uuid;
        return entry;
    }

  private:
    Query same_{db, "SELECT Pid FROM Service WHERE Uuid = ?"};
    TextServices services_;
};

// Nothing joins or leaves a list that is none of FAV1 to FAV4.
std::vector<Entry> inPlacesOf(std::vector<Entry> const& entries, std::vector<Entry> const& places) {
    std::multimap<unsigned int, Entry const*> left;  // those of one service in their order
    for (Entry const& entry : entries)
        left.emplace(entry.serviceId, &entry);
    std::vector<Entry> result = places;
    for (Entry& place : result) {
        auto const entry = left.lower_bound(place.serviceId);
        if (entry == left.end() || entry->first != place.serviceId)
            continue;
        place.number = entry->second->number;
        place.deleted = entry->second->deleted;
        left.erase(entry);
    }
    return result;
}

// Whether an entry would come to a number that an OTT channel has taken since.
bool takesReserved(std::vector<Entry> const& entries, SeenList const& seen) {
    return std::any_of(
        entries.begin(), entries.end(),
        [&](Entry const& entry) {
            return entry.number && !entry.deleted && seen.reserved.count(*entry.number) != 0 &&
                   std::find(seen.entries.begin(), seen.entries.end(), entry) == seen.entries.end();
        });
}

// Stored items without those that are delivered.
std::vector<StoredItem> undelivered(std::vector<StoredItem> items,
                                    std::vector<Entry> const& delivered) {
    std::map<std::int64_t, int> counts;
    for (Entry const& entry : delivered)
        ++counts[entry.serviceId];
    items.erase(std::remove_if(items.begin(), items.end(),
                               [&](StoredItem const& item) { return counts[item.service]-- > 0; }),
                items.end());
    return items;
}

// Of kept services: the keys that they have now by those that they had.
using NewKeys = std::map<std::int64_t, std::int64_t>;

struct Plan {
    std::vector<ListEdit> edits;
    NewKeys newKeys;
};

class Planner {
  public:
    Planner(KeptCopy const& copy, TakenBack& result)
        : copy_(copy), result_(result), all_(readEntries(allServicesList().uuid).entries) {}

    Plan plan() {
        std::vector<List> const lists = allLists();
        for (ListEntries const& kept : copy_.lists) {
            auto const list = std::find_if(lists.begin(), lists.end(), [&](List const& each) {
                return each.uuid == kept.uuid;
            });
            if (list == lists.end())
                throw Failure("the database has no list " + kept.listName + " any more");
            plan_.edits.push_back(planOne(*list, kept));
        }
        return plan_;
    }

  private:
    ListEdit planOne(List const& list, ListEntries const& kept) {
        ListEdit edit{seeList(list), {}};
        std::vector<Entry> const& now = edit.seen.entries;
        ListEntries const* const after = withUuid(copy_.after, kept.uuid);
        bool const isFav = list.favIndex != 0;
        std::vector<Entry> mine = findAll(edit.seen, kept.entries, after);
        std::vector<Entry> base =
            after == nullptr ? now : findAll(edit.seen, after->entries, after);
        if (!isFav) {
            mine = inPlacesOf(mine, now);
            base = inPlacesOf(base, now);
        }
        Merge merged;
        if (std::is_permutation(base.begin(), base.end(), now.begin(), now.end()) &&
            !takesReserved(mine, edit.seen))
            merged.entries = mine;
        else
            merged = merge(base, now, mine, edit.seen.reserved);
        std::string const start = kept.listName + ": ";
        for (Conflict const& each : merged.conflicts)
            result_.conflicts.push_back(start + each.base.name + ": " + each.theirs +
                                        " since; it would be " + each.mine);
        for (std::string const& note : merged.notes)
            result_.notes.push_back(start + note);
        edit.wanted.entries = isFav ? merged.entries : inPlacesOf(merged.entries, now);
        if (isFav)
            addUndelivered(kept, edit);
        return edit;
    }

    // What the command left as it was is nothing to bring back.
    std::vector<Entry> findAll(SeenList const& seen, std::vector<Entry> const& kept,
                               ListEntries const* after) {
        KeptServices services(seen.entries, all_);
        std::set<unsigned int> held;
        for (Entry const& entry : seen.entries)
            held.insert(entry.serviceId);
        std::vector<Entry> found;
        for (Entry const& entry : kept) {
            std::string error;
            std::optional<Entry> service = services.find(entry, error);
            if (service)
                plan_.newKeys[entry.serviceId] = service->serviceId;
            if (service && (seen.list.favIndex != 0 || held.count(service->serviceId) != 0))
                found.push_back(*service);
            else if (after == nullptr || std::find(after->entries.begin(), after->entries.end(),
                                                   entry) == after->entries.end())
                result_.lost.push_back(displayName(seen.list) + ": " + entry.name +
                                       (service ? " is in it no more" : ": " + error));
        }
        return found;
    }

    // The entry for an item that was not shown: of the service that it was of, or of none. Else why
    // there can be none.
    static std::optional<Entry> entryOf(StoredItem const& item, std::string& error) {
        error = "has no number that could be written";
        using Numbers = std::numeric_limits<std::int32_t>;
        if (!item.number || *item.number < Numbers::min() || *item.number > Numbers::max())
            return std::nullopt;
        error = "has no key that a service can have";
        if (item.service < 0 || item.service > std::numeric_limits<unsigned int>::max())
            return std::nullopt;
        error = "its key is another service's now";
        Entry entry;
        entry.number = item.number;
        entry.serviceId = static_cast<unsigned int>(item.service);
        entry.deleted = item.hidden.value_or(0) != 0;
        Query same(db, "SELECT Pid FROM Service WHERE Uuid = ? ORDER BY Pid <> ?");
        if (!item.uuid.empty() && same.bind(item.uuid).bind(item.service).next()) {
            entry.serviceId = static_cast<unsigned int>(same.number(0));
            entry.uuid = item.uuid;
            return entry;
        }
        Query service(db, "SELECT printf('%s', Uuid) FROM Service WHERE Pid = ?");
        bool const isOfAnother = service.bind(item.service).next() && !service.text(0).empty();
        return isOfAnother ? std::nullopt : std::optional(entry);
    }

    // What was not shown, and went with the command's request for the list.
    std::vector<StoredItem> dropped(ListEntries const& kept) const {
        std::vector<StoredItem> items = undelivered(kept.items, kept.entries);
        std::set<std::int64_t> left;
        if (ListEntries const* const after = withUuid(copy_.after, kept.uuid))
            for (StoredItem const& item : after->items)
                left.insert(item.service);
        items.erase(
            std::remove_if(items.begin(), items.end(),
                           [&](StoredItem const& item) { return left.count(item.service) != 0; }),
            items.end());
        return items;
    }

    void noteLeftOut(ListEntries const& kept, std::string const& why) {
        result_.notes.push_back(kept.listName + ": an entry that is not shown is left out: " + why);
    }

    // A request is the whole content of the list: what the library does not deliver is named, too.
    void addUndelivered(ListEntries const& kept, ListEdit& edit) {
        std::vector<Entry>& wanted = edit.wanted.entries;
        std::vector<Entry> entries;
        std::string error;
        std::set<unsigned int> held;
        for (Entry const& entry : wanted)
            held.insert(entry.serviceId);
        for (StoredItem const& item : undelivered(storedItems(kept.uuid), edit.seen.entries))
            if (auto const entry = entryOf(item, error)) {
                held.insert(entry->serviceId);
                entries.push_back(*entry);
            } else {
                noteLeftOut(kept, error);
            }
        std::size_t const now = entries.size();
        for (StoredItem const& item : dropped(kept)) {
            auto const entry = entryOf(item, error);
            if (!entry)
                noteLeftOut(kept, error);
            else if (held.count(entry->serviceId) == 0)
                entries.push_back(*entry);
            if (entry)
                plan_.newKeys[item.service] = entry->serviceId;
        }
        if (entries.size() == now && wanted == edit.seen.entries)
            return;
        wanted.insert(wanted.end(), entries.begin(), entries.end());
        edit.seen.undelivered = 0;
    }

    KeptCopy const& copy_;
    TakenBack& result_;
    std::vector<Entry> const all_;
    Plan plan_;
};

// False when somebody wrote in between.
bool write(Plan const& plan, KeptCopy const& copy, TakenBack& result) {
    JoiningItems joining;
    for (ListEdit const& edit : plan.edits) {
        ListEntries const* const kept = withUuid(copy.lists, edit.seen.list.uuid);
        if (kept == nullptr || edit.seen.list.favIndex == 0)
            continue;
        for (StoredItem item : kept->items) {
            if (auto const key = plan.newKeys.find(item.service); key != plan.newKeys.end())
                item.service = key->second;
            joining.add(kept->uuid, item);
        }
    }
    return writeRound(plan.edits, result);
}

// One try, with the lists as they are by now; `result` is what those before it wrote. False when
// somebody wrote in between.
bool tryToTakeBack(KeptCopy const& copy, bool isForced, UndoStore& store, TakenBack& result) {
    TakenBack next;
    std::optional<FrozenDatabase> frozen(std::in_place);
    Plan const plan = Planner(copy, next).plan();
    bool const isRefused = !isForced && (!next.conflicts.empty() || !next.lost.empty());
    bool const isFirst = !result.isWritten();
    if (isRefused && !isFirst)
        throw Failure("others changed the same entries meanwhile; a part is taken back");
    if (!isFirst)
        static_cast<Written&>(next) = std::move(result);
    result = std::move(next);
    follow(reachedBy(plan.edits), result);
    frozen.reset();
    if (isRefused)
        return true;
    if (isFirst) {
        bool const isRedo = copy.undoes != 0;  // kept where it is forced, as any command
        store.keepLists((isRedo ? "undo --redo " : "undo ") + std::to_string(copy.number),
                        result.before, expectedLists(plan.edits), isRedo ? 0 : copy.number);
    }
    bool const isDone = write(plan, copy, result);
    if (!result.isWritten())
        store.discard();
    return isDone;
}

}  // namespace

TakenBack takeBack(KeptCopy const& copy, bool isForced, UndoStore& store) {
    TakenBack result;
    try {
        for (int tries = 1; !tryToTakeBack(copy, isForced, store, result); ++tries)
            if (tries == kMostTries)
                throw Failure(std::string("others change the lists all the time; ") +
                              (result.isWritten() ? "a part is taken back" : "nothing is written"));
    } catch (...) {
        keepRounds(result, store);
        throw;
    }
    keepRounds(result, store);
    return result;
}

}  // namespace channel_lists
