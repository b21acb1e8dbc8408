#include "edit/everywhere.h"

#include <map>
#include <set>

#include "lists/current_keys.h"
#include "lists/meant_entries.h"

namespace channel_lists {
namespace {

std::map<unsigned int, bool> byKey(std::vector<Mark> const& marks) {
    std::vector<Entry> services;
    services.reserve(marks.size());
    for (auto const& [service, hidden] : marks)
        services.push_back(service);
    CurrentKeys().giveTo(services);
    std::map<unsigned int, bool> hiddenOnes;
    for (std::size_t i = 0; i < marks.size(); ++i)
        hiddenOnes[services[i].serviceId] = marks[i].second;
    return hiddenOnes;
}

}  // namespace

std::vector<Mark> marksOf(SeenList const& seen, std::vector<Operation> const& operations) {
    std::vector<Mark> marks;
    for (Operation const& each : operations) {
        bool const restores = each.verb == Verb::Restore;
        for (std::size_t const place :
             findEntries(seen.entries, each.service, displayName(seen.list), restores))
            marks.emplace_back(seen.entries[place], !restores);
    }
    return marks;
}

std::vector<ListEdit> editsEverywhere(std::vector<Mark> const& marks, bool renumber) {
    std::map<unsigned int, bool> const hiddenOnes = byKey(marks);
    std::vector<ListEdit> edits;
    std::set<std::string> uuids;
    for (List const& list : allLists()) {
        if (list.uuid.empty() || !uuids.insert(list.uuid).second)
            continue;
        SeenList seen = seeList(list);
        std::vector<Entry> entries = seen.entries;
        for (Entry& entry : entries)
            if (auto const mark = hiddenOnes.find(entry.serviceId); mark != hiddenOnes.end())
                entry.deleted = mark->second;
        if (entries != seen.entries)
            edits.push_back({std::move(seen), {std::move(entries), renumber}});
    }
    return edits;
}

}  // namespace channel_lists
