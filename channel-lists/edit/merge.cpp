#include "edit/merge.h"

#include <algorithm>
#include <map>
#include <utility>

namespace channel_lists {
namespace {

// A service, and how often the list named it before.
using Key = std::pair<unsigned int, int>;
using Keyed = std::map<Key, Entry const*>;

template <class Visit>
void forEachKeyed(std::vector<Entry> const& entries, Visit visit) {
    std::map<unsigned int, int> occurrences;
    for (Entry const& entry : entries)
        visit(Key(entry.serviceId, occurrences[entry.serviceId]++), entry);
}

Keyed keyed(std::vector<Entry> const& entries) {
    Keyed result;
    forEachKeyed(entries, [&](Key const& key, Entry const& entry) { result[key] = &entry; });
    return result;
}

Entry const* find(Keyed const& entries, Key const& key) {
    auto const found = entries.find(key);
    return found == entries.end() ? nullptr : found->second;
}

std::string changeOf(Entry const* base, Entry const* now) {
    if (now == nullptr)
        return "removed";
    std::string const place =
        now->number ? "to " + numberText(*now) : std::string("off its number");
    std::string text;
    if (base == nullptr)
        text = "added at " + numberText(*now);
    else if (base->number != now->number)
        text = "moved " + place;
    if (base == nullptr ? now->deleted : base->deleted != now->deleted)
        text += std::string(text.empty() ? "" : ", ") + (now->deleted ? "hidden" : "restored");
    return text;
}

// Whether both changed the same of an entry, and not to the same.
template <class Value>
bool areAtOdds(Value const& base, Value const& theirs, Value const& mine) {
    return theirs != base && mine != base && theirs != mine;
}

class Merging {
  public:
    Merging(std::vector<Entry> const& base, std::vector<Entry> const& theirs,
            std::vector<Entry> const& mine)
        : base_(keyed(base)), theirs_(keyed(theirs)), mine_(keyed(mine)) {}

    Merge run(std::vector<Entry> const& theirs, std::vector<Entry> const& mine,
              std::set<std::int64_t> const& reserved) {
        forEachKeyed(
            theirs, [&](Key const& key, Entry const& entry) { keepTheirs(key, entry); });
        forEachKeyed(mine, [&](Key const& key, Entry const& entry) { addMine(key, entry); });
        placeMine(reserved);
        return std::move(result_);
    }

  private:
    void keepTheirs(Key const& key, Entry const& theirs) {
        Entry const* const base = find(base_, key);
        Entry const* const mine = find(mine_, key);
        if (mine == nullptr && base != nullptr) {  // I removed it
            if (!(*base == theirs))
                conflict(*base, changeOf(base, &theirs), "removed");
            return;
        }
        result_.entries.push_back(theirs);
        if (mine == nullptr)
            return;  // they added it
        takeMine(base == nullptr ? theirs : *base, base, theirs, *mine);
    }

    // What I changed of an entry that both have: of one that both added, all that it is.
    void takeMine(Entry const& shown, Entry const* base, Entry const& theirs, Entry const& mine) {
        Entry& entry = result_.entries.back();
        std::size_t const index = result_.entries.size() - 1;
        Entry unseen;
        unseen.deleted = mine.deleted;
        Entry const& seen = base == nullptr ? unseen : *base;
        if (areAtOdds(seen.number, theirs.number, mine.number) ||
            (base == nullptr && theirs.deleted != mine.deleted))
            conflict(shown, changeOf(base, &theirs), changeOf(base, &mine));
        bool const isShownAgain = seen.deleted && !mine.deleted;
        if (mine.number != seen.number)
            entry.number = mine.number;
        if (base == nullptr || mine.deleted != seen.deleted)
            entry.deleted = mine.deleted;
        if ((mine.number != seen.number && mine.number != theirs.number) || isShownAgain)
            isMine_.insert(index);
    }

    void addMine(Key const& key, Entry const& mine) {
        if (find(theirs_, key) != nullptr)
            return;
        Entry const* const base = find(base_, key);
        if (base != nullptr && *base == mine)
            return;  // they removed what I left as it was
        if (base != nullptr)
            conflict(*base, "removed", changeOf(base, &mine));
        result_.entries.push_back(mine);
        isMine_.insert(result_.entries.size() - 1);
    }

    void conflict(Entry const& base, std::string theirs, std::string mine) {
        result_.conflicts.push_back({base, std::move(theirs), std::move(mine)});
    }

    // In the order of their numbers, the numbers that others hold left out.
    void placeMine(std::set<std::int64_t> const& reserved) {
        std::set<std::int64_t> taken = reserved;
        std::vector<Entry*> mine;
        for (std::size_t i = 0; i < result_.entries.size(); ++i) {
            Entry& entry = result_.entries[i];
            if (entry.deleted || !entry.number)
                continue;
            if (isMine_.count(i) != 0)
                mine.push_back(&entry);
            else
                taken.insert(*entry.number);
        }
        std::stable_sort(mine.begin(), mine.end(),
                         [](Entry const* a, Entry const* b) { return *a->number < *b->number; });
        for (Entry* const entry : mine) {
            std::int64_t const wanted = *entry->number;
            while (taken.count(*entry->number) != 0)
                ++*entry->number;
            taken.insert(*entry->number);
            if (*entry->number != wanted)
                result_.notes.push_back(entry->name + " goes to " + numberText(*entry) + ": " +
                                        std::to_string(wanted) + " is taken by now");
        }
    }

    Keyed const base_, theirs_, mine_;
    std::set<std::size_t> isMine_;  // entries that my change gave their number
    Merge result_;
};

}  // namespace

Merge merge(std::vector<Entry> const& base, std::vector<Entry> const& theirs,
            std::vector<Entry> const& mine, std::set<std::int64_t> const& reserved) {
    return Merging(base, theirs, mine).run(theirs, mine, reserved);
}

}  // namespace channel_lists
