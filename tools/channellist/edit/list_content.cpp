#include "edit/list_content.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "failure.h"
#include "services/service_reader.h"
#include "services/service_words.h"

namespace tool {
namespace {

// A request carries unsigned 32-bit numbers; a stored negative one wraps there and back.
constexpr std::int64_t kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();

std::int64_t channelNumber(const ResultRow& service) {
    const std::string& text = service[SERVICE_FIELD_CHANNEL_NUMBER];
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number < kSmallest || number > kLargest) {
        throw Failure("service id:" + service[SERVICE_FIELD_PID] + " (" +
                      service[SERVICE_FIELD_CAPTION] + ") has the channel number '" + text +
                      "', which no edit can write back; nothing is written");
    }
    return number;
}

}  // namespace

std::vector<Entry> readEntries(const std::string& listUuid) {
    const Rows services = readServices(listUuid);
    if (!services.complete) {
        throw Failure(
            "the list ends in front of a service that cannot be read, and an edit would"
            " lose the rest; \"channellist check\" names it");
    }
    std::vector<Entry> entries;
    for (const ResultRow& service : services.rows) {
        entries.push_back({channelNumber(service),
                           static_cast<unsigned int>(std::stol(service[SERVICE_FIELD_PID])),
                           isDeleted(service), service[SERVICE_FIELD_CAPTION],
                           service[SERVICE_FIELD_UUID]});
    }
    return entries;
}

void ListContent::add(Entry entry, std::optional<std::int64_t> number) {
    if (number) {
        checkFree(*number);
        makeRoomAt(*number);
        entry.number = *number;
    } else {
        std::int64_t last = 0;
        for (const Entry& each : entries_) {
            last = std::max(last, each.number);
        }
        entry.number = numberAfter(last);
    }
    entries_.push_back(std::move(entry));
}

void ListContent::remove(std::size_t index) {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
}

void ListContent::move(std::size_t index, std::int64_t number) {
    checkFree(number);
    const std::int64_t old = entries_[index].number;
    std::vector<Entry*> between;  // the others from the old place to the new one
    for (Entry& entry : entries_) {
        if (&entry != &entries_[index] && entry.number >= std::min(old, number) &&
            entry.number <= std::max(old, number)) {
            between.push_back(&entry);
        }
    }
    std::stable_sort(between.begin(), between.end(),
                     [](const Entry* a, const Entry* b) { return a->number < b->number; });
    const bool occupied = std::any_of(between.begin(), between.end(),
                                      [&](const Entry* e) { return e->number == number; });
    if (occupied) {
        std::vector<std::int64_t> numbers = {old};
        for (const Entry* entry : between) {
            numbers.push_back(entry->number);
        }
        std::sort(numbers.begin(), numbers.end());
        const std::size_t first = number < old ? 1 : 0;  // the slots that remain for the others
        for (std::size_t i = 0; i < between.size(); ++i) {
            between[i]->number = numbers[first + i];
        }
    }
    entries_[index].number = number;
}

void ListContent::checkFree(std::int64_t number) const {
    if (reserved_.count(number) != 0) {
        throw Failure("number " + std::to_string(number) + " of " + listName_ +
                      " belongs to an OTT channel");
    }
    if (number < 1 || number > kLargest) {
        throw Failure("channel numbers go from 1 to " + std::to_string(kLargest), kUsage);
    }
}

std::int64_t ListContent::numberAfter(std::int64_t number) const {
    do {
        ++number;
    } while (reserved_.count(number) != 0);
    return number;
}

void ListContent::makeRoomAt(std::int64_t number) {
    std::vector<std::vector<Entry*>> moved;  // with the number that they leave
    for (std::int64_t at = number;; at = numberAfter(at)) {
        std::vector<Entry*> there;
        for (Entry& entry : entries_) {
            if (entry.number == at) {
                there.push_back(&entry);
            }
        }
        if (there.empty()) {
            break;
        }
        moved.push_back(std::move(there));
    }
    for (const auto& entries : moved) {
        for (Entry* entry : entries) {
            entry->number = numberAfter(entry->number);
        }
    }
}

}  // namespace tool
