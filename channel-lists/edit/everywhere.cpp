#include "edit/everywhere.h"

#include <map>
#include <set>

#include "lists/meant_entries.h"

namespace channel_lists {
namespace {

using Marks = std::map<unsigned int, bool>;  // hidden or not, by service

Marks marksOf(SeenList const& seen, std::vector<Operation> const& operations) {
    Marks marks;
    for (Operation const& each : operations) {
        bool const restores = each.verb == Verb::Restore;
        for (std::size_t const place :
             findEntries(seen.entries, each.service, displayName(seen.list), restores))
            marks[seen.entries[place].serviceId] = !restores;
    }
    return marks;
}

}  // namespace

std::vector<ListEdit> editsEverywhere(SeenList const& seen,
                                      std::vector<Operation> const& operations, bool renumber) {
    Marks const marks = marksOf(seen, operations);
    std::vector<ListEdit> edits;
    std::set<std::string> uuids;
    for (bool const isFav : {false, true}) {
        for (List const& list : allLists()) {
            if ((list.favIndex != 0) != isFav || list.uuid.empty() ||
                !uuids.insert(list.uuid).second)
                continue;
            SeenList each = seeList(list);
            std::vector<Entry> entries = each.entries;
            for (Entry& entry : entries) {
                auto const mark = marks.find(entry.serviceId);
                if (mark != marks.end())
                    entry.deleted = mark->second;
            }
            if (!(entries == each.entries))
                edits.push_back({std::move(each), {std::move(entries), renumber}});
        }
    }
    return edits;
}

}  // namespace channel_lists
