#include "output/differences.h"

#include <iostream>

#include "text/display_text.h"

namespace tool {

std::vector<Column> differenceColumns() {
    return {{"List", Align::Left, kIsCut}, {"Change"},
            {"Before", Align::Right},      {"After", Align::Right},
            {"Name", Align::Left, kIsCut}, {"Id", Align::Right, 1}};
}

void printDifferences(std::vector<Change> const& changes, std::ostream& out) {
    if (changes.empty()) {
        out << "no entry of a list differs\n";
        return;
    }
    TextTable table(differenceColumns());
    for (Change const& change : told(changes)) {
        Style const look = change.before == change.after ? Style::Plain : Style::Bold;
        table.add({change.listName,
                   joined(change.what),
                   {change.before, Style::Dim},
                   {change.after, look},
                   change.name,
                   std::to_string(change.serviceId)});
    }
    table.print(out);
}

}  // namespace tool
