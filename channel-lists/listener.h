// What a front end hears while the lists' code is at work: nothing here writes to a terminal.
#pragma once

#include <string>

namespace channel_lists {

class Listener {
  public:
    virtual ~Listener() = default;

    // A sentence that a person should read, though nothing failed.
    virtual void note(std::string const& /*sentence*/) {}
    // Another process has held the file for half a second. Called once for each wait, from SQLite's
    // frames: it must not throw, as the next two.
    virtual void waitingFor(std::string const& /*file*/) noexcept {}
    // What a long look is at; "" when it is over.
    virtual void progress(std::string const& /*task*/) noexcept {}
    // A message of the library that traceMessages asked for.
    virtual void trace(std::string const& /*message*/) noexcept {}
};

// The one that hears from now on; it has to outlive its use. Null for none.
void setListener(Listener* listener);
Listener& listener();

}  // namespace channel_lists
