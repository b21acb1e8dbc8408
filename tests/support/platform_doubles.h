// The platform's calls as a test program sees them: definitions in the program take the place of
// usleep, system, sqlite3_open and the debug library for the shared library under test, and record
// what it asked. Safe from several threads; reset() before each test.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace platform {

constexpr char kChannelDatabasePath[] = "/var/tvservice/servicelist.db";
constexpr char kUnopenablePath[] = "/dev/null/servicelist.db";

/// A message of the library, taken apart. A message that breaks the rules of the debug library (no
/// prefix, no line feed, level not asked just before) has a `text` that begins with "MALFORMED".
struct Message {
    unsigned int module = 0;
    unsigned int level = 0;
    std::string format;  // whole, as handed over
    std::string text;    // between the prefix and the final line feed
    std::string file, function;
    int line = 0;
};

/// Forgets all records, hooks and redirections, and enables every level.
void reset();

/// Sleeps take no time and those of the library are recorded, not those of SQLite's busy timeout;
/// the hook gets the number of the sleep, from 1 on.
int sleepCount();
unsigned long long sleptMicroseconds();
void onSleep(std::function<void(int)> hook);

/// Commands are recorded and not run; the hook gives the result, 0 without one.
std::vector<std::string> commands();
void onCommand(std::function<int(const std::string&)> hook);

std::vector<Message> messages();
void forgetMessages();
/// Number of times that the library asked whether a level is enabled.
int checkCount();
/// Which levels are enabled from now on.
void enableLevels(std::function<bool(unsigned int level)> enabled);

/// Every path given to sqlite3_open, in order.
std::vector<std::string> openedPaths();
/// Opens `file` whenever `path` is asked for; kUnopenablePath makes the open fail for real.
void redirectOpen(const std::string& path, const std::string& file);

}  // namespace platform
