#include "fuzz_lists.h"

#include <algorithm>

#include "fuzz_database.h"
#include "lists/text_order.h"

using namespace channel_lists;

namespace fuzz {
namespace {

bool hasNumber(std::vector<Entry> const& entries, Entry const& entry) {
    return std::any_of(
        entries.begin(), entries.end(),
        [&](Entry const& each) {
            return each.serviceId == entry.serviceId && each.number == entry.number;
        });
}

}  // namespace

std::vector<Entry> storedEntries() {
    return {{1, 1, false, "Das Erste", "a", "1-1019-10301", ""},
            {2, 2, false, "shown 5 x", "b", "1-1011-11110", ""},
            {3, 3, true, "", "c", "1-1089-12060", ""},
            {3, 4, false, "ZDF HD", "d", "1-1011-11110", ""},
            {std::nullopt, 5, false, "1-2-3", "e", "", ""},
            {7, 6, false, "VOX", "f", "-5-99999999999-2", ""},
            {8, 6, false, "VOX", "f", "-5-99999999999-2", ""},
            {2147483646, 7, false, "\xE2\x80\xAEid:3", "g", "3-8-10", ""}};
}

std::vector<Entry> allEntries() {
    std::vector<Entry> all = storedEntries();
    all.erase(all.begin() + 6);
    all.push_back({8, 8, false, "zdf hd", "h", "4-8-11110", ""});
    all.push_back({9, 9, false, "   ", "i", "2-7-9", ""});
    all.push_back({10, 10, true, "Jazz", "j", "3-8-11", ""});
    return all;
}

std::set<std::int64_t> reservedNumbers() { return {4, 9, 2147483647}; }

void expectSound(std::vector<Entry> const& before, std::vector<Entry> const& after) {
    std::set<std::int64_t> numbers;
    for (Entry const& entry : after) {
        if (entry.deleted || !entry.number)
            continue;
        expect(numbers.insert(*entry.number).second, "a number that two entries hold");
        if (hasNumber(before, entry))
            continue;
        expect(*entry.number >= 1 && *entry.number <= 2147483647, "a number beyond the bounds");
        expect(reservedNumbers().count(*entry.number) == 0, "the number of an OTT channel");
    }
}

void expectOrders(ListText const& text) {
    std::vector<Entry> const stored = storedEntries(), all = allEntries();
    for (int const favIndex : {0, 1}) {
        List list;
        list.name = "List";
        list.favIndex = favIndex;
        TextOrder const order =
            orderByText(list, stored, favIndex == 0 ? stored : all, reservedNumbers(), text);
        if (!order.errors.empty())
            continue;
        expectSound(stored, order.entries);
        TextOrder const again = orderByText(list, order.entries, all, reservedNumbers(),
                                            parseList(formatList("List", order.entries)));
        expect(again.errors.empty() && again.entries == order.entries,
               "its own text changes the list");
    }
}

}  // namespace fuzz
