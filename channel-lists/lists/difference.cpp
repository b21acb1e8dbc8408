#include "lists/difference.h"

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
                {listName, {"removed"}, numberText(*entry), "", entry->name, entry->serviceId});
        }
    }
    for (auto const& [key, entry] : written) {
        std::string const number = numberText(*entry);
        auto const old = olds.find(key);
        if (old == olds.end()) {
            std::vector<std::string> words = {"added"};
            if (entry->deleted)
                words.emplace_back("hidden");
            changes.push_back({listName, words, "", number, entry->name, entry->serviceId});
        } else if (!(*old->second == *entry)) {
            changes.push_back({listName, wordsFor(*old->second, *entry), numberText(*old->second),
                               number, entry->name, entry->serviceId});
        }
    }
}

}  // namespace

Snapshot takeSnapshot(List const& edited) {
    Snapshot snapshot;
    for (List const& list : allLists()) {
        if (list.pid != edited.pid && list.favIndex == 0)
            continue;
        snapshot.push_back(
            {list.uuid, displayName(list), readEntries(list.uuid).entries, list.favIndex != 0});
    }
    return snapshot;
}

std::vector<Change> differences(Snapshot const& before, Snapshot const& after) {
    std::vector<Change> changes;
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i)
        compare(before[i].listName, before[i].entries, after[i].entries, changes);
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
                        {"id", change.serviceId}});
    }
    return list;
}

}  // namespace channel_lists
