#include "lists/text_order.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

#include "lists/text_services.h"
#include "text/display_text.h"
#include "text/folded_text.h"

namespace channel_lists {
namespace {

// A line with its service and the place where the list holds it.
struct Placed {
    TextLine const* line;
    Entry entry;
    std::optional<std::size_t> stored;
    bool kept = false;  // its number is that of the list, or of the list that the text came from
};

class Ordering {
  public:
    Ordering(List const& list, std::vector<Entry> const& stored, std::vector<Entry> const& all,
             std::set<std::int64_t> const& reserved)
        : list_(list), stored_(stored), reserved_(reserved), services_(stored, all) {
        for (std::size_t i = 0; i < stored.size(); ++i)
            places_[stored[i].serviceId].push_back(i);
    }

    TextOrder run(ListText const& text) {
        result_.errors = text.errors;
        numbersHold_ = text.numbersHold;
        for (TextLine const& line : text.lines)
            place(line);
        checkNumbers();
        noteMissing();
        noteRenamed();
        if (result_.errors.empty())
            dealNumbers();
        if (result_.errors.empty())
            collect();
        return std::move(result_);
    }

  private:
    void fail(TextLine const& line, std::string const& sentence) {
        result_.errors.push_back({line.line, sentence});
    }

    void place(TextLine const& line) {
        std::string error;
        Entry const* const service = services_.find(line, error);
        if (service == nullptr) {
            fail(line, error);
            return;
        }
        Placed placed{&line, *service, std::nullopt};
        auto& lines = lines_[service->serviceId];
        auto const held = places_.find(service->serviceId);
        std::size_t const most = held == places_.end() ? 1 : held->second.size();
        if (lines.size() >= most) {
            fail(line, displayText(service->name) + " stands in line " +
                           std::to_string(lines.front()) + " already");
            return;
        }
        if (held != places_.end())
            placed.stored = held->second[lines.size()];
        lines.push_back(line.line);
        checkMembership(placed);
        checkWords(placed);
        bool const isPrinted = line.key && !(line.name.empty() && line.triplet.empty());
        if (placed.stored) {
            Entry const& stored = stored_[*placed.stored];
            bool const isNone = line.isUnnumbered && !stored.number;
            placed.kept = isNone || (line.number && stored.number == line.number);
        } else {
            placed.kept = line.number && isPrinted;
        }
        placed.entry.number = line.number;
        bool const isHidden = placed.stored && stored_[*placed.stored].deleted;
        placed.entry.deleted = line.hidden.value_or(isHidden);
        placed_.push_back(std::move(placed));
    }

    void checkMembership(Placed const& placed) {
        std::string const name = displayText(placed.entry.name);
        if (placed.stored)
            return;
        if (list_.favIndex == 0) {
            fail(*placed.line, name + " is not in " + displayName(list_) +
                                   ", and services are added to FAV1 to FAV4 only");
        }
    }

    // A line found by name alone has it; in others it may be changed, or what stands in front of it
    // is a slip of "shown" or "hidden".
    void checkWords(Placed const& placed) {
        TextLine const& line = *placed.line;
        std::string const name = squeezed(displayText(placed.entry.name));
        std::string const given = squeezed(line.name);
        bool const isFound = !line.key && line.triplet.empty();
        if (given.empty() || given == name || isFound || line.service == serviceText(placed.entry))
            return;
        bool const hasMore = given.size() > name.size() &&
                             (name.empty() || given.compare(given.size() - name.size() - 1,
                                                            std::string::npos, " " + name) == 0);
        std::string const first = given.substr(0, given.find(' '));
        std::string const more =
            hasMore && !name.empty() ? given.substr(0, given.size() - name.size() - 1) : first;
        if (!line.hidden && !numbersHold_ && (hasMore || isSlipOfState(first)))
            fail(line, "'" + more + "' is neither shown nor hidden");
        else
            renamed_.push_back("'" + line.name + "' (line " + std::to_string(line.line) +
                               ") stays '" + placed.entry.name + "'");
    }

    static bool isSlipOfState(std::string const& word) {
        constexpr std::size_t kSlips = 2;
        return editDistance(folded(word), "shown") <= kSlips ||
               editDistance(folded(word), "hidden") <= kSlips;
    }

    void noteRenamed() {
        constexpr std::size_t kMost = 3;
        if (renamed_.empty())
            return;
        std::size_t const more = renamed_.size() - std::min(renamed_.size(), kMost);
        renamed_.resize(renamed_.size() - more);
        result_.notes.push_back(
            "names are the broadcaster's, and nothing is renamed: " + joined(renamed_) +
            (more == 0 ? "" : " and " + std::to_string(more) + " more"));
    }

    // Those that the text itself gives.
    void checkNumbers() {
        for (Placed const& each : placed_) {
            if (each.kept || !each.line->number)
                continue;
            std::int64_t const number = *each.line->number;
            std::string const text = "number " + std::to_string(number);
            if (number < 1)
                fail(*each.line, "channel numbers begin at 1");
            else if (reserved_.count(number) != 0)
                fail(*each.line, text + " belongs to an OTT channel");
            if (each.entry.deleted)
                continue;
            auto const [other, isNew] = given_.emplace(number, each.line->line);
            if (!isNew)
                fail(*each.line,
                     text + " is given in line " + std::to_string(other->second) + ", too");
            used_.insert(number);
        }
    }

    void noteMissing() {
        std::size_t missing = 0;
        for (Entry const& entry : stored_) {
            auto const lines = lines_.find(entry.serviceId);
            if (lines == lines_.end()) {
                ++missing;
                if (list_.favIndex == 0 && !entry.deleted && entry.number)
                    keepNumber(entry);
            } else if (lines->second.size() < places_[entry.serviceId].size()) {
                result_.errors.push_back(
                    {lines->second.front(), displayText(entry.name) + " stands several times in " +
                                                displayName(list_) +
                                                "; one of them cannot be removed alone"});
                places_[entry.serviceId].resize(lines->second.size());  // told once
            }
        }
        if (missing != 0 && list_.favIndex == 0) {
            result_.notes.push_back(displayName(list_) + ": " + std::to_string(missing) +
                                    " entries have no line; they stay as they are");
        }
    }

    // Of an entry that stays without a line.
    void keepNumber(Entry const& entry) {
        auto const given = given_.find(*entry.number);
        if (given != given_.end())
            result_.errors.push_back({given->second, "number " + numberText(entry) +
                                                         " is that of " + displayText(entry.name) +
                                                         ", which has no line"});
        used_.insert(*entry.number);
    }

    static bool dealsOut(Placed const& placed) {
        return placed.kept && placed.line->number && !placed.entry.deleted;
    }

    // The numbers that lines keep, in the order of the list.
    std::vector<std::int64_t> keptNumbers() const {
        std::vector<Placed const*> kept;
        bool joins = false;
        for (Placed const& each : placed_) {
            if (!dealsOut(each))
                continue;
            kept.push_back(&each);
            joins = joins || !each.stored;
        }
        if (!numbersHold_)
            std::stable_sort(kept.begin(), kept.end(), [joins](Placed const* a, Placed const* b) {
                return joins ? *a->line->number < *b->line->number : *a->stored < *b->stored;
            });
        std::vector<std::int64_t> numbers;
        numbers.reserve(kept.size());
        for (Placed const* each : kept)
            numbers.push_back(*each->line->number);
        return numbers;
    }

    // Lists with numbers that several shown entries hold are left as they are.
    std::map<std::int64_t, int> heldBySeveral() const {
        std::map<std::int64_t, int> holders;
        for (Entry const& entry : stored_)
            if (!entry.deleted && entry.number)
                ++holders[*entry.number];
        return holders;
    }

    void dealNumbers() {
        std::vector<std::int64_t> const kept = keptNumbers();
        std::map<std::int64_t, int> holders = heldBySeveral();
        auto next = kept.begin();
        std::int64_t last = 0;
        for (Placed& each : placed_) {
            if (dealsOut(each)) {
                std::int64_t const number = *next++;
                bool const isTaken = used_.count(number) != 0 && holders[number] < 2;
                bool const isFree = each.stored || (number > 0 && reserved_.count(number) == 0);
                each.entry.number = isTaken || !isFree ? freeAfter(number) : number;
            } else if (!each.entry.number && !each.kept) {
                each.entry.number = freeAfter(last);
            }
            if (!each.entry.number)
                continue;
            if (*each.entry.number > std::numeric_limits<std::int32_t>::max())
                fail(*each.line, "no channel number is left for it");
            if (each.entry.deleted)
                continue;
            last = *each.entry.number;
            used_.insert(last);
        }
    }

    std::int64_t freeAfter(std::int64_t number) const {
        do {
            ++number;
        } while (number < 1 || used_.count(number) != 0 || reserved_.count(number) != 0);
        return number;
    }

    void collect() {
        std::vector<Entry> entries = stored_;
        std::vector<bool> hasLine(stored_.size(), list_.favIndex == 0);
        std::vector<Entry> joining;
        for (Placed const& each : placed_) {
            if (!each.stored) {
                joining.push_back(each.entry);
                continue;
            }
            entries[*each.stored] = each.entry;
            hasLine[*each.stored] = true;
        }
        for (std::size_t i = 0; i < entries.size(); ++i)
            if (hasLine[i])
                result_.entries.push_back(std::move(entries[i]));
        result_.entries.insert(result_.entries.end(), joining.begin(), joining.end());
    }

    List const& list_;
    std::vector<Entry> const& stored_;
    std::set<std::int64_t> const& reserved_;
    TextServices services_;
    std::map<unsigned int, std::vector<std::size_t>> places_;  // of a service in the list
    std::map<unsigned int, std::vector<int>> lines_;           // of a service in the text
    std::vector<Placed> placed_;
    std::map<std::int64_t, int> given_;  // numbers that lines ask for
    std::set<std::int64_t> used_;
    std::vector<std::string> renamed_;
    bool numbersHold_ = false;
    TextOrder result_;
};

}  // namespace

TextOrder orderByText(List const& list, std::vector<Entry> const& stored,
                      std::vector<Entry> const& all, std::set<std::int64_t> const& reserved,
                      ListText const& text) {
    return Ordering(list, stored, all, reserved).run(text);
}

}  // namespace channel_lists
