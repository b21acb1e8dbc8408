// Ends what a foreign database makes SQLite do for ever: a view or a trigger without end.
#pragma once

#include <sqlite3.h>

#include <optional>
#include <string>

namespace channel_lists {

// Of the process, as SQLite's work is. The limit holds for each statement; what a statement reads
// or writes without end is remembered, and no later one may work on it for long.
class TimeLimit {
  public:
    // Statements of the connection are interrupted once they reach the limit.
    static void watch(sqlite3* connection);
    // A view of the database is what has no end, rather than the table that a statement begins
    // with.
    static void learnViews(sqlite3* connection);

    // In seconds of computing: neither a wait for a lock nor for a person counts.
    static void set(int seconds);
    // Forgets that the limit was reached. On a terminal, the task is shown once the tasks together
    // have taken long.
    static void restart(std::string const& task);
    // The tasks are done, whatever they reached.
    static void finish();

    static bool isReached();
    // "reading FavoriteList did not end within 20 seconds", of what was last interrupted.
    static std::string sentence();
    static std::string sentenceOf(std::string const& ended);
    // Work that was interrupted, "reading FavoriteList", once for each.
    static std::optional<std::string> newlyEndless();
};

}  // namespace channel_lists
