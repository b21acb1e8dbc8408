// The content of a list while it is edited.
#pragma once

#include <channellist-access/db_access.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace channel_lists {

struct Entry {
    // Channel number in the list; none where the database holds something that is no number.
    std::optional<std::int64_t> number;
    unsigned int serviceId = 0;
    bool deleted = false;  // hidden: its row stays, but it is not shown
    std::string name;
    std::string uuid;
    std::string triplet;  // "1-1019-10301", network, stream and service; "" without one
    std::string tuning;   // "satellite 1, 11837 MHz", for people
};

inline bool operator==(Entry const& a, Entry const& b) {
    return a.number == b.number && a.serviceId == b.serviceId && a.deleted == b.deleted;
}

// The channel number as text; "" without one.
std::string numberText(Entry const& entry);

// What tells it from others of its name: "id:125 (RTL, satellite 1, 12188 MHz, 1-1089-12003, number
// 3, hidden)".
std::string described(Entry const& entry);

struct Entries {
    std::vector<Entry> entries;
    bool complete = true;  // see Rows
};
Entries readEntries(std::string const& listUuid);
// The entry of a row of readServices.
Entry entryOf(ResultRow const& service);

// Places entries at numbers. No number is held twice that was not before, but by hidden entries,
// which hold none. `reserved` numbers are those of OTT channels: nothing is placed there.
class ListContent {
  public:
    ListContent(std::string listName, std::vector<Entry> entries, std::set<std::int64_t> reserved)
        : listName_(std::move(listName)),
          entries_(std::move(entries)),
          reserved_(std::move(reserved)) {}

    std::string const& listName() const { return listName_; }
    std::vector<Entry> const& entries() const { return entries_; }

    // At the end, or at `number`; an entry that stands there, and those behind it up to the next
    // gap, then move on by one.
    void add(Entry entry, std::optional<std::int64_t> number);
    void remove(std::size_t index);
    // To `number`; when an entry stands there, those between the old place and the new one close
    // up, and the numbers in use stay the same. A hidden entry leaves all others where they are.
    void move(std::size_t index, std::int64_t number);
    // The entries in this order to `number` and those behind it.
    void moveAll(std::vector<std::size_t> const& block, std::int64_t number);
    void swap(std::size_t one, std::size_t other);
    // Deals the numbers of these entries out again in this order.
    void order(std::vector<std::size_t> const& indices);
    // The number of the entry is free then.
    void hide(std::size_t index);
    // An entry that took its number in the meantime moves on.
    void restore(std::size_t index);

    // The next one that no OTT channel has.
    std::int64_t numberAfter(std::int64_t number) const;

  private:
    void checkFree(std::int64_t number) const;
    void makeRoomAt(std::int64_t number);
    // Closes up the entries between the place of `leaving` and `number`; false when it has none.
    bool closeUp(Entry const& leaving, std::int64_t number);

    std::string listName_;
    std::vector<Entry> entries_;
    std::set<std::int64_t> reserved_;
};

}  // namespace channel_lists
