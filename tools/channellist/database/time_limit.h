// Ends what a foreign database makes SQLite do for ever: a view or a trigger without end.
#pragma once

#include <sqlite3.h>

#include <string>

namespace tool {

// Of the process, as SQLite's work is.
class TimeLimit {
  public:
    // Statements of the connection are interrupted once the limit is reached.
    static void watch(sqlite3* connection);

    // In seconds of computing: neither a wait for a lock nor for a person counts.
    static void set(int seconds);
    // Begins to count anew. On a terminal, `task` is shown where the tasks together take long.
    static void restart(std::string const& task);
    static void hideTask();

    static bool isReached();
    static std::string sentence();
};

}  // namespace tool
