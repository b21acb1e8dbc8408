// What changes in lists while somebody watches.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "database/session.h"
#include "lists/difference.h"

namespace channel_lists {

// Every change is told once, by the look that finds it: what the looks told, one after the other,
// leads from the lists as they were at the start to the lists as they are.
class ListWatch {
  public:
    // Of all lists when `words` is empty. Throws Failure when there is nothing to watch.
    ListWatch(std::string file, std::vector<std::string> const& words);

    // The names of the lists that are watched, as they are now.
    std::vector<std::string> listNames() const;

    // What has changed since the last look. A database that is locked, or away for a while, is
    // asked again at the next look; the listener hears of one that is away, and of its return.
    std::vector<Change> look();

  private:
    Snapshot read() const;
    void openAgain();
    void leave(std::string const& why);

    std::string file_;
    std::vector<std::string> uuids_;  // none: all lists
    std::unique_ptr<Session> session_;
    std::optional<std::int64_t> version_;  // of the last look that could read
    Snapshot told_;
    bool isAway_ = false;
};

}  // namespace channel_lists
