// What the page asks of the lists: reading them and saving what became of them.
#pragma once

#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "database/list_naming.h"
#include "listener.h"
#include "text/json_text.h"

namespace page {

using channel_lists::Json;

// A request that no page of ours makes.
struct Malformed : std::runtime_error {
    using runtime_error::runtime_error;
};

// All calls but `mark` wait for each other: the library works on one database of the process.
class ListServer : private channel_lists::Listener {
  public:
    ListServer(std::string database, bool isReadOnly);
    ~ListServer() override;
    ListServer(ListServer const&) = delete;
    ListServer& operator=(ListServer const&) = delete;

    // Differs once the file was written to, replaced or removed; reads nothing of it.
    std::string mark() const;
    // The lists, and what FAV1 to FAV4 and those that are asked for hold, of one moment, each with
    // its version; as text, for there may be much.
    std::string lists(std::vector<std::string> const& asked);
    // Brings the lists to what the request says, if each still has the version that it was read at.
    Json save(Json const& request);

  private:
    Json overviewOf(std::vector<channel_lists::List> const& lists,
                    std::string const& seenMark) const;
    void note(std::string const& sentence) override { notes_.push_back(sentence); }

    std::string database_;
    bool isReadOnly_;
    std::mutex mutex_;
    std::vector<std::string> notes_;  // of the request at work
};

}  // namespace page
