#include "database/waiting.h"

#include <sqlite3.h>

#include <chrono>

#include "listener.h"

namespace channel_lists {
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
    if (!isTold && now - waitBegan >= kPatience) {
        isTold = true;
        listener().waitingFor(waitedFor);
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

}  // namespace channel_lists
