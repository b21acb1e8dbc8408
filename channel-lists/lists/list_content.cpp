#include "lists/list_content.h"

#include <algorithm>
#include <limits>

#include "failure.h"
#include "services/service_reader.h"
#include "services/service_words.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

// A request carries unsigned 32-bit numbers; a stored negative one wraps there and back.
constexpr std::int64_t kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();

std::optional<std::int64_t> channelNumber(std::string const& text) {
    auto const number = wholeNumber(text);
    return number && *number >= kSmallest && *number <= kLargest ? number : std::nullopt;
}

bool isAt(Entry const& entry, std::int64_t number) {
    return !entry.deleted && entry.number == number;
}

}  // namespace

std::string numberText(Entry const& entry) {
    return entry.number ? std::to_string(*entry.number) : std::string();
}

std::string described(Entry const& entry) {
    std::vector<std::string> words = {entry.name};
    for (std::string const& word : {entry.tuning, entry.triplet})
        if (!word.empty())
            words.push_back(word);
    if (entry.number)
        words.push_back("number " + numberText(entry));
    if (entry.deleted)
        words.emplace_back("hidden");
    return "id:" + std::to_string(entry.serviceId) + " (" + joined(words) + ")";
}

Entry entryOf(ResultRow const& service) {
    auto const id = wholeNumber(service[SERVICE_FIELD_PID]).value_or(0);
    return {channelNumber(service[SERVICE_FIELD_CHANNEL_NUMBER]),
            static_cast<unsigned int>(id),
            isDeleted(service),
            service[SERVICE_FIELD_CAPTION],
            service[SERVICE_FIELD_UUID],
            tripletOf(service),
            tuningOf(service)};
}

Entries readEntries(std::string const& listUuid) {
    Rows const services = readServices(listUuid);
    Entries result;
    result.complete = services.complete;
    for (ResultRow const& service : services.rows)
        result.entries.push_back(entryOf(service));
    return result;
}

void ListContent::add(Entry entry, std::optional<std::int64_t> number) {
    if (number) {
        checkFree(*number);
        makeRoomAt(*number);
        entry.number = *number;
    } else {
        std::int64_t last = 0;
        for (Entry const& each : entries_)
            last = std::max(last, each.number.value_or(0));
        entry.number = numberAfter(last);
    }
    entries_.push_back(std::move(entry));
}

void ListContent::remove(std::size_t index) {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
}

void ListContent::move(std::size_t index, std::int64_t number) {
    checkFree(number);
    if (!entries_[index].deleted && !closeUp(entries_[index], number))
        makeRoomAt(number);
    entries_[index].number = number;
}

// Those without a number join first, one behind the other. Then those in front of or at their place
// go there from the last on, those behind it from the first on: so none of the block is between the
// old and the new place of another.
void ListContent::moveAll(std::vector<std::size_t> const& block, std::int64_t number) {
    checkFree(number);
    std::optional<std::int64_t> last;
    for (std::size_t const index : block)
        if (!entries_[index].number) {
            last = last ? numberAfter(*last) : number;
            move(index, *last);
        }
    std::vector<std::pair<std::size_t, std::int64_t>> moves;
    for (std::size_t const index : block) {
        moves.emplace_back(index, number);
        number = index == block.back() ? number : numberAfter(number);
    }
    auto const isInFront = [&](auto const& each) {
        return entries_[each.first].number <= each.second;
    };
    auto const behind = std::stable_partition(moves.begin(), moves.end(), isInFront);
    std::reverse(moves.begin(), behind);
    for (auto const& [index, place] : moves)
        move(index, place);
}

void ListContent::swap(std::size_t one, std::size_t other) {
    Entry const& hidden = entries_[entries_[one].deleted ? one : other];
    if (entries_[one].deleted != entries_[other].deleted)
        throw Failure(described(hidden) + " is no place to swap with; restore it");
    std::swap(entries_[one].number, entries_[other].number);
}

void ListContent::order(std::vector<std::size_t> const& indices) {
    std::vector<std::optional<std::int64_t>> numbers;
    numbers.reserve(indices.size());
    for (std::size_t const index : indices)
        numbers.push_back(entries_[index].number);
    std::sort(numbers.begin(), numbers.end());
    for (std::size_t i = 0; i < indices.size(); ++i)
        entries_[indices[i]].number = numbers[i];
}

void ListContent::hide(std::size_t index) { entries_[index].deleted = true; }

void ListContent::restore(std::size_t index) {
    Entry& entry = entries_[index];
    if (entry.deleted && entry.number)
        makeRoomAt(*entry.number);
    entry.deleted = false;
}

bool ListContent::closeUp(Entry const& leaving, std::int64_t number) {
    if (!leaving.number)
        return false;
    std::int64_t const old = *leaving.number;
    std::vector<Entry*> between;  // the others from the old place to the new one
    for (Entry& entry : entries_)
        if (&entry != &leaving && !entry.deleted && entry.number &&
            *entry.number >= std::min(old, number) && *entry.number <= std::max(old, number))
            between.push_back(&entry);
    if (std::none_of(between.begin(), between.end(),
                     [&](Entry const* entry) { return isAt(*entry, number); }))
        return true;
    std::stable_sort(between.begin(), between.end(),
                     [](Entry const* a, Entry const* b) { return *a->number < *b->number; });
    std::vector<std::int64_t> numbers = {old};
    for (Entry const* entry : between)
        numbers.push_back(*entry->number);
    std::sort(numbers.begin(), numbers.end());
    std::size_t const first = number < old ? 1 : 0;  // the numbers that remain for the others
    for (std::size_t i = 0; i < between.size(); ++i)
        between[i]->number = numbers[first + i];
    return true;
}

void ListContent::checkFree(std::int64_t number) const {
    if (reserved_.count(number) != 0) {
        throw Failure("number " + std::to_string(number) + " of " + listName_ +
                      " belongs to an OTT channel");
    }
    if (number < 1 || number > kLargest)
        throw Failure("channel numbers go from 1 to " + std::to_string(kLargest), kUsage);
}

std::int64_t ListContent::numberAfter(std::int64_t number) const {
    do {
        ++number;
    } while (reserved_.count(number) != 0);
    if (number > kLargest)
        throw Failure("no channel number of " + listName_ + " is left behind the last one");
    return number;
}

void ListContent::makeRoomAt(std::int64_t number) {
    std::vector<std::vector<Entry*>> moved;  // with the number that they leave
    for (std::int64_t at = number;; at = numberAfter(at)) {
        std::vector<Entry*> there;
        for (Entry& entry : entries_)
            if (isAt(entry, at))
                there.push_back(&entry);
        if (there.empty())
            break;
        moved.push_back(std::move(there));
    }
    for (auto const& entries : moved)
        for (Entry* entry : entries)
            entry->number = numberAfter(*entry->number);
}

}  // namespace channel_lists
