#include "lists/meant_entries.h"

#include <fnmatch.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "failure.h"
#include "text/display_text.h"
#include "text/folded_text.h"
#include "text/json_text.h"
#include "text/near_names.h"

namespace channel_lists {
namespace {

using Places = std::vector<std::size_t>;
using Range = std::pair<std::int64_t, std::int64_t>;

bool isDigits(std::string const& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// "200-209" and "30-".
std::optional<Range> rangeOf(std::string const& word) {
    std::size_t const dash = word.find('-');
    if (dash == std::string::npos || !isDigits(word.substr(0, dash)))
        return std::nullopt;
    std::string const end = word.substr(dash + 1);
    auto const first = wholeNumber(word.substr(0, dash));
    auto const last = end.empty() ? std::numeric_limits<std::int64_t>::max() : wholeNumber(end);
    if (!first || !last || (!end.empty() && !isDigits(end)))
        return std::nullopt;
    return Range(*first, *last);
}

bool isPattern(std::string const& word) { return word.find_first_of("*?") != std::string::npos; }

Places placesOf(std::vector<Entry> const& entries, std::function<bool(Entry const&)> const& fits) {
    Places places;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (fits(entries[i]))
            places.push_back(i);
    return places;
}

// One entry, in the first way that any has.
Places placesMeantBy(std::vector<Entry> const& entries, std::string const& word) {
    if (isDigits(word)) {
        auto const number = wholeNumber(word);
        return placesOf(entries,
                        [&](Entry const& each) { return number && each.number == *number; });
    }
    if (word.compare(0, 3, "id:") == 0 && isDigits(word.substr(3))) {
        auto const id = wholeNumber(word.substr(3));
        return placesOf(entries, [&](Entry const& each) { return id && each.serviceId == *id; });
    }
    Places places = placesOf(entries, [&](Entry const& each) {
        return each.name == word || displayText(each.name) == word ||
               (!word.empty() && each.uuid == word);
    });
    std::string const meant = folded(word);
    return !places.empty() || word.empty()
               ? places
               : placesOf(entries, [&](Entry const& each) { return folded(each.name) == meant; });
}

Places placesInBlock(std::vector<Entry> const& entries, std::string const& word) {
    if (auto const range = rangeOf(word)) {
        return placesOf(
            entries,
            [&](Entry const& each) {
                return each.number && *each.number >= range->first && *each.number <= range->second;
            });
    }
    std::string const pattern = folded(word);
    return placesOf(entries, [&](Entry const& each) {
        return fnmatch(pattern.c_str(), folded(each.name).c_str(), FNM_NOESCAPE) == 0;
    });
}

// Of hidden and shown entries that one word means, such as a number that two hold.
void keepOnly(bool hidden, std::vector<Entry> const& entries, Places& found) {
    auto const isOther = [&](std::size_t i) { return entries[i].deleted != hidden; };
    if (!std::all_of(found.begin(), found.end(), isOther))
        found.erase(std::remove_if(found.begin(), found.end(), isOther), found.end());
}

[[noreturn]] void failWithoutAny(std::vector<Entry> const& entries, std::string const& word,
                                 std::string const& listName) {
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (Entry const& entry : entries)
        names.push_back(displayText(entry.name));
    bool const isName = !isDigits(word) && !isBlock(word);
    throw Failure(listName + " holds no service '" + word + "'" +
                  (isName ? didYouMean(word, names) : ""));
}

}  // namespace

bool isBlock(std::string const& word) { return rangeOf(word).has_value() || isPattern(word); }

std::vector<std::size_t> findEntries(std::vector<Entry> const& entries, std::string const& word,
                                     std::string const& listName, bool hidden) {
    if (!isBlock(word) || !placesMeantBy(entries, word).empty())
        return {findEntry(entries, word, listName, hidden)};
    Places found = placesInBlock(entries, word);
    keepOnly(hidden, entries, found);
    if (found.empty())
        failWithoutAny(entries, word, listName);
    std::stable_sort(found.begin(), found.end(), [&](std::size_t a, std::size_t b) {
        return entries[a].number < entries[b].number;
    });
    return found;
}

std::size_t findEntry(std::vector<Entry> const& entries, std::string const& word,
                      std::string const& listName, bool hidden) {
    Places found = placesMeantBy(entries, word);
    keepOnly(hidden, entries, found);
    if (found.empty())
        failWithoutAny(entries, word, listName);
    if (found.size() > 1) {
        std::string candidates;
        for (std::size_t const i : found)
            candidates += (candidates.empty() ? "" : ", ") + described(entries[i]);
        throw Failure("several services of " + listName + " are meant by '" + word +
                      "': " + candidates);
    }
    return found[0];
}

}  // namespace channel_lists
