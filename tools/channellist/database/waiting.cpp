#include "database/waiting.h"

#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPatience{500};
constexpr std::chrono::milliseconds kPause{300};  // a longer one ends a wait

sqlite3_vfs* original = nullptr;
sqlite3_vfs telling;
std::string waitedFor;
Clock::time_point waitBegan, lastSlept;
bool isTold = false;

// Every busy handler sleeps through the file system layer, the library's as well.
int sleepAndTell(sqlite3_vfs* /*layer*/, int microseconds) {
    Clock::time_point const now = Clock::now();
    if (now - lastSlept > kPause)
        waitBegan = now;
    if (!isTold && now - waitBegan >= kPatience && isatty(STDERR_FILENO) == 1) {
        isTold = true;
        std::fprintf(stderr,
                     "channellist: waiting for another process that uses %s (Ctrl-C to stop)\n",
                     waitedFor.c_str());
    }
    int const slept = original->xSleep(original, microseconds);
    lastSlept = Clock::now();
    return slept;
}

}  // namespace

void tellWaitsFor(std::string const& file) {
    waitedFor = file;
    if (original != nullptr)
        return;
    original = sqlite3_vfs_find(nullptr);
    telling = *original;
    telling.zName = "channellist";
    telling.xSleep = sleepAndTell;
    sqlite3_vfs_register(&telling, 1);
}

}  // namespace tool
