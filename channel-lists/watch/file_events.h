// When somebody may have written to a database.
#pragma once

#include <string>

namespace channel_lists {

// Sees the file, its journal and its write-ahead log come, change and go.
class FileEvents {
  public:
    explicit FileEvents(std::string const& file);
    ~FileEvents();
    FileEvents(FileEvents const&) = delete;
    FileEvents& operator=(FileEvents const&) = delete;

    enum class Event { Touched, Nothing, NoReader };
    // Returns at the first event, or once nothing has come for a while: less of one where the
    // system gives no events. NoReader: nobody reads any more what is written to `output`.
    Event wait(int milliseconds, int output);

  private:
    bool isWatching();
    // Takes all events that are there; whether one is of the database.
    bool takeEvents();

    std::string folder_, name_;
    int events_ = -1;
    int watch_ = -1;
};

}  // namespace channel_lists
