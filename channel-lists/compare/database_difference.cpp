#include "compare/database_difference.h"

#include <algorithm>

#include "compare/service_pairs.h"

namespace channel_lists {
namespace {

// A list of both databases, or of one; null for the other.
struct ListPair {
    ListEntries const* old;
    ListEntries const* now;
};

using IsSame = bool (*)(ListEntries const&, ListEntries const&);

constexpr IsSame kSames[] = {
    [](ListEntries const& a, ListEntries const& b) {
        return a.uuid == b.uuid && a.listName == b.listName;
    },
    [](ListEntries const& a, ListEntries const& b) { return a.listName == b.listName; },
    [](ListEntries const& a, ListEntries const& b) { return a.uuid == b.uuid; },
};

std::vector<ListPair> pairsOf(Snapshot const& old, Snapshot const& now) {
    std::vector<ListPair> pairs;
    for (ListEntries const& list : old)
        pairs.push_back({&list, nullptr});
    std::set<ListEntries const*> matched;
    for (IsSame const isSame : kSames)
        for (ListPair& pair : pairs)
            for (ListEntries const& list : now)
                if (pair.now == nullptr && matched.count(&list) == 0 && isSame(*pair.old, list)) {
                    pair.now = &list;
                    matched.insert(&list);
                }
    for (ListEntries const& list : now)
        if (matched.count(&list) == 0)
            pairs.push_back({nullptr, &list});
    return pairs;
}

void compareServices(ComparedContent const& old, ComparedContent const& now,
                     ServicePairs const& pairs, DatabaseDifference& result) {
    std::set<unsigned int> kept;
    auto const add = [&](char const* what, unsigned int key, ComparedService const& service,
                         std::string const& before, std::string const& after) {
        result.services.push_back({what, service.name, service.triplet, before, after});
        result.total[what].insert(key);
    };
    for (auto const& [newKey, service] : now.services) {
        unsigned int const key = pairs.sharedKey(newKey);
        auto const before = old.services.find(key);
        if (before == old.services.end()) {
            add("came", key, service, "", service.transponder);
            continue;
        }
        kept.insert(key);
        if (service.name != before->second.name)
            add("renamed", key, service, before->second.name, service.name);
        if (service.transponder != before->second.transponder)
            add("retuned", key, service, before->second.transponder, service.transponder);
    }
    for (auto const& [key, service] : old.services)
        if (kept.count(key) == 0)
            add("went", key, service, service.transponder, "");
}

void compareLists(ListPair const& pair, ServicePairs const& services, DatabaseDifference& result) {
    ListEntries const& named = pair.old != nullptr ? *pair.old : *pair.now;
    ListEntries const none{named.uuid, named.listName, {}, named.isFav};
    ListTally list{named.listName,
                   pair.old == nullptr   ? "came"
                   : pair.now == nullptr ? "went"
                                         : "",
                   {}};
    std::vector<Change> changes = differences({pair.old != nullptr ? *pair.old : none},
                                              {pair.now != nullptr ? *pair.now : none});
    for (Change& change : changes) {
        for (std::string const& word : change.what) {
            bool const isOfTheList = word == "added" || word == "removed";
            list.tally[word == "added"     ? "came"
                       : word == "removed" ? "went"
                                           : word]
                .insert(change.serviceId);
            if (!isOfTheList)
                result.total[word].insert(change.serviceId);
        }
        change.serviceId = services.storedKey(change.serviceId);
    }
    for (Entry const& entry : (pair.now != nullptr ? *pair.now : none).entries)
        for (char const* word : {"renamed", "retuned"})
            if (result.total[word].count(entry.serviceId) != 0)
                list.tally[word].insert(entry.serviceId);
    result.changes.insert(result.changes.end(), changes.begin(), changes.end());
    if (!list.tally.empty() || *list.list != '\0')
        result.lists.push_back(std::move(list));
}

}  // namespace

DatabaseDifference differenceOf(ComparedContent const& old, ComparedContent now) {
    ServicePairs const services(old, now);
    for (ListEntries& list : now.lists)
        for (Entry& entry : list.entries)
            entry.serviceId = services.sharedKey(entry.serviceId);
    DatabaseDifference result;
    compareServices(old, now, services, result);
    for (ListPair const& pair : pairsOf(old.lists, now.lists))
        compareLists(pair, services, result);
    return result;
}

}  // namespace channel_lists
