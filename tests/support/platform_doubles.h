// The platform's calls as a test program sees them: definitions in the program take the place of
// usleep, system, sqlite3_open and the debug library for the shared library under test, and record
// what it asked. For one thread.
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

/// What the library asked of the platform, and what the platform does about it.
struct State {
    /// Sleeps take no time and those of the library are recorded, not those of SQLite's busy
    /// timeout; the hook gets the number of the sleep, from 1 on.
    int sleepCount = 0;
    unsigned long long sleptMicroseconds = 0;
    std::function<void(int)> onSleep;

    /// Commands are not run; the hook gives the result, 0 without one.
    int commandCount = 0;
    std::function<int(std::string const&)> onCommand;

    std::vector<Message> messages;
    int checkCount = 0;  // how often the library asked whether a level is enabled
    std::function<bool(unsigned int level)> isEnabled = [](unsigned int) { return true; };

    std::vector<std::string> openedPaths;
    /// Opened for kChannelDatabasePath; kUnopenablePath makes the open fail for real.
    std::string channelDatabase = kChannelDatabasePath;
};

/// Made anew before each test.
inline State state;

}  // namespace platform
