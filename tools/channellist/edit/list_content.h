// The content of a list while it is edited.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tool {

struct Entry {
    std::int64_t number = 0;  // channel number in the list
    unsigned int serviceId = 0;
    bool deleted = false;  // `hide` marks an entry deleted: its row stays
    std::string name;
    std::string uuid;
};

inline bool operator==(const Entry& a, const Entry& b) {
    return a.number == b.number && a.serviceId == b.serviceId && a.deleted == b.deleted;
}

// The entries that the library delivers for a list. Throws Failure when they are not all of the
// list's, or one has no channel number.
std::vector<Entry> readEntries(const std::string& listUuid);

// Places entries at numbers; no number is held twice that was not before. `reserved` numbers are
// those of OTT channels: nothing is placed there.
class ListContent {
  public:
    ListContent(std::string listName, std::vector<Entry> entries, std::set<std::int64_t> reserved)
        : listName_(std::move(listName)),
          entries_(std::move(entries)),
          reserved_(std::move(reserved)) {}

    const std::string& listName() const { return listName_; }
    std::vector<Entry>& entries() { return entries_; }
    const std::vector<Entry>& entries() const { return entries_; }

    // At the end, or at `number`; an entry that stands there, and those behind it up to the next
    // gap, then move on by one.
    void add(Entry entry, std::optional<std::int64_t> number);
    void remove(std::size_t index);
    // To `number`; when an entry stands there, those between the old place and the new one close
    // up, and the numbers in use stay the same.
    void move(std::size_t index, std::int64_t number);

  private:
    void checkFree(std::int64_t number) const;
    std::int64_t numberAfter(std::int64_t number) const;
    void makeRoomAt(std::int64_t number);

    std::string listName_;
    std::vector<Entry> entries_;
    std::set<std::int64_t> reserved_;
};

}  // namespace tool
