#include "lists/difference.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace channel_lists {
namespace {

// An entry's service, and how often the list named it before.
using Key = std::pair<unsigned int, int>;
using KeyedEntries = std::vector<std::pair<Key, Entry const*>>;

KeyedEntries keyed(std::vector<Entry> const& entries) {
    std::map<unsigned int, int> occurrences;
    KeyedEntries result;
    for (Entry const& entry : entries)
        result.emplace_back(Key(entry.serviceId, occurrences[entry.serviceId]++), &entry);
    return result;
}

std::vector<std::string> wordsFor(Entry const& before, Entry const& after) {
    std::vector<std::string> words;
    if (before.number != after.number)
        words.emplace_back("moved");
    if (before.deleted != after.deleted)
        words.emplace_back(after.deleted ? "hidden" : "restored");
    return words;
}

void compare(std::string const& listName, std::vector<Entry> const& before,
             std::vector<Entry> const& after, std::vector<Change>& changes) {
    KeyedEntries const stored = keyed(before);
    KeyedEntries const written = keyed(after);
    std::map<Key, Entry const*> const olds(stored.begin(), stored.end());
    std::map<Key, Entry const*> const news(written.begin(), written.end());
    for (auto const& [key, entry] : stored) {
        if (news.count(key) == 0) {
            changes.push_back(
                {listName, {"removed"}, numberText(*entry), "", entry->name, entry->serviceId, {}});
        }
    }
    for (auto const& [key, entry] : written) {
        std::string const number = numberText(*entry);
        auto const old = olds.find(key);
        if (old == olds.end()) {
            std::vector<std::string> words = {"added"};
            if (entry->deleted)
                words.emplace_back("hidden");
            changes.push_back({listName, words, "", number, entry->name, entry->serviceId, {}});
        } else if (!(*old->second == *entry)) {
            changes.push_back({listName,
                               wordsFor(*old->second, *entry),
                               numberText(*old->second),
                               number,
                               entry->name,
                               entry->serviceId,
                               {}});
        }
    }
}

// A change of numbers, of entries that kept their order and of others.
struct Step {
    Change* change;
    std::int64_t before, after;
};

// The most that can be left in their order; the others were moved past them.
std::vector<bool> inOrder(std::vector<Step> const& steps) {
    std::vector<std::size_t> ends;  // of the best sequence of each length
    std::vector<std::size_t> previous(steps.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
        auto const place = std::upper_bound(
            ends.begin(), ends.end(), i,
            [&](std::size_t a, std::size_t b) { return steps[a].before < steps[b].before; });
        previous[i] = place == ends.begin() ? i : *(place - 1);
        if (place == ends.end())
            ends.push_back(i);
        else
            *place = i;
    }
    std::vector<bool> stays(steps.size());
    for (std::size_t left = ends.size(), at = ends.empty() ? 0 : ends.back(); left-- > 0;
         at = previous[at])
        stays[at] = true;
    return stays;
}

// Whether the entry makes way for the other one, or takes the place that it left.
bool follows(Step const& step, Change const& mover) {
    constexpr std::int64_t kEnd = std::numeric_limits<std::int64_t>::max();
    bool const leaves = mover.after.empty() || mover.what.back() == "hidden";
    bool const joins = mover.before.empty() || mover.what.back() == "restored";
    std::int64_t const from = joins ? kEnd : wholeNumber(mover.before).value_or(kEnd);
    std::int64_t const to = leaves ? kEnd : wholeNumber(mover.after).value_or(kEnd);
    return from > to ? step.after > step.before && step.before >= to && step.after <= from
                     : step.after < step.before && step.after >= from && step.before <= to;
}

void findCauses(std::vector<Change>& changes) {
    std::vector<Step> steps;
    std::vector<Change const*> movers;
    for (Change& change : changes) {
        auto const before = wholeNumber(change.before), after = wholeNumber(change.after);
        if (change.what == std::vector<std::string>{"moved"} && before && after)
            steps.push_back({&change, *before, *after});
        else
            movers.push_back(&change);
    }
    std::stable_sort(steps.begin(), steps.end(),
                     [](Step const& a, Step const& b) { return a.after < b.after; });
    std::vector<bool> const stays = inOrder(steps);
    for (std::size_t i = 0; i < steps.size(); ++i)
        if (!stays[i])
            movers.push_back(steps[i].change);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        auto const cause = std::find_if(movers.begin(), movers.end(), [&](Change const* mover) {
            return follows(steps[i], *mover);
        });
        if (stays[i] && cause != movers.end())
            steps[i].change->cause = (*cause)->serviceId;
    }
}

}  // namespace

Snapshot takeSnapshot(List const& edited) {
    Snapshot snapshot;
    for (List const& list : allLists()) {
        if (list.pid != edited.pid && (list.favIndex == 0 || edited.favIndex != 0))
            continue;
        snapshot.push_back(
            {list.uuid, displayName(list), readEntries(list.uuid).entries, list.favIndex != 0});
    }
    return snapshot;
}

std::vector<Change> told(std::vector<Change> const& changes) {
    constexpr int kFew = 2;
    std::map<std::pair<std::string, unsigned int>, int> followers;
    for (Change const& change : changes)
        if (change.cause)
            ++followers[{change.listName, *change.cause}];
    auto const areFolded = [&](Change const& change, unsigned int cause) {
        auto const found = followers.find({change.listName, cause});
        return found != followers.end() && found->second > kFew;
    };
    std::vector<Change> shown;
    for (Change change : changes) {
        if (change.cause && areFolded(change, *change.cause))
            continue;
        if (areFolded(change, change.serviceId)) {
            bool const isBetween = !change.before.empty() && !change.after.empty();
            change.what.emplace_back(isBetween ? "those between follow" : "those behind follow");
        }
        shown.push_back(std::move(change));
    }
    return shown;
}

void addMissing(Snapshot const& lists, Snapshot& all) {
    for (ListEntries const& list : lists)
        if (std::none_of(all.begin(), all.end(),
                         [&](ListEntries const& each) { return each.uuid == list.uuid; }))
            all.push_back(list);
}

std::vector<Change> differences(Snapshot const& before, Snapshot const& after) {
    std::vector<Change> changes;
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i) {
        std::vector<Change> ofList;
        compare(before[i].listName, before[i].entries, after[i].entries, ofList);
        findCauses(ofList);
        changes.insert(changes.end(), ofList.begin(), ofList.end());
    }
    return changes;
}

Json differencesJson(std::vector<Change> const& changes) {
    Json list = Json::array();
    for (Change const& change : changes) {
        list.push_back({{"list", change.listName},
                        {"change", change.what},
                        {"before", numberOrText(change.before)},
                        {"after", numberOrText(change.after)},
                        {"name", change.name},
                        {"id", change.serviceId},
                        {"cause", change.cause ? Json(*change.cause) : Json()}});
    }
    return list;
}

}  // namespace channel_lists
