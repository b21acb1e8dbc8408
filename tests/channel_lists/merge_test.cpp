// Two changes of one list.
#include "edit/merge.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace channel_lists;

namespace {

// "1:A 2:B 3:C-": A at 1, C hidden.
std::vector<Entry> list(std::string const& text) {
    std::vector<Entry> entries;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        Entry entry;
        auto const colon = word.find(':');
        entry.number = std::stoi(word);
        entry.name = word.substr(colon + 1, 1);
        entry.serviceId = static_cast<unsigned char>(entry.name[0]);
        entry.deleted = word.back() == '-';
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::string text(Merge const& merge) {
    std::string text;
    for (Entry const& entry : merge.entries)
        text += (text.empty() ? "" : " ") + numberText(entry) + ":" + entry.name +
                (entry.deleted ? "-" : "");
    for (Conflict const& conflict : merge.conflicts)
        text += "; " + conflict.base.name + " " + conflict.theirs + " | " + conflict.mine;
    return text;
}

TEST(Merge, KeepsBothChangesAndTellsWhereTheyAreAtOdds) {
    const struct {
        char const* theirs;
        char const* mine;
        char const* merged;
    } cases[] = {
        {"1:A 2:B 3:C", "1:A 2:B 3:C", "1:A 2:B 3:C"},
        {"1:A 2:B 3:C", "2:A 1:B 3:C", "2:A 1:B 3:C"},
        {"2:A 1:B 3:C", "1:A 2:B 3:C", "2:A 1:B 3:C"},
        // Each its own entry, or of one entry its own column.
        {"1:A 2:B- 3:C", "1:A 3:C 7:D", "1:A 3:C 7:D; B hidden | removed"},
        {"1:A- 2:B 3:C", "1:A 2:B 9:C", "1:A- 2:B 9:C"},
        {"1:A 2:B 3:C-", "1:A 2:B 8:C", "1:A 2:B 8:C-"},
        {"1:A 3:C", "1:A 2:B 4:C", "1:A 4:C"},
        {"1:A 2:B 3:C 4:D", "2:B 3:C", "2:B 3:C 4:D"},
        {"1:A 2:B 3:C 4:D", "1:A 2:B 3:C 4:E", "1:A 2:B 3:C 4:D 6:E"},  // 5 is reserved
        {"1:A 2:B 3:C 4:D", "2:A 3:B 4:C 1:E", "2:A 3:B 6:C 4:D 1:E"},
        // The same, or not the same.
        {"1:A 3:C", "1:A 3:C", "1:A 3:C"},
        {"1:A 2:B 3:C 4:D", "1:A 2:B 3:C 4:D", "1:A 2:B 3:C 4:D"},
        {"1:A 2:B 3:C 4:D", "1:A 2:B 3:C 7:D", "1:A 2:B 3:C 7:D; D added at 4 | added at 7"},
        {"1:A 2:B 7:C", "1:A 2:B 8:C", "1:A 2:B 8:C; C moved to 7 | moved to 8"},
        {"1:A 2:B", "1:A 2:B 8:C", "1:A 2:B 8:C; C removed | moved to 8"},
        {"1:A 2:B 7:C-", "1:A 2:B", "1:A 2:B; C moved to 7, hidden | removed"},
        // A list that names a service twice.
        {"1:A 2:B 3:C 4:A", "1:A 2:B 3:C 6:A", "1:A 2:B 3:C 6:A; A added at 4 | added at 6"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(text(merge(list("1:A 2:B 3:C"), list(c.theirs), list(c.mine), {5})), c.merged)
            << c.theirs << " | " << c.mine;
}

}  // namespace
