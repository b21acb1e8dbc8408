// Waiting out a database that another connection has locked.
#ifndef CHANNELLIST_DB_ACCESS_BUSY_RETRY_H
#define CHANNELLIST_DB_ACCESS_BUSY_RETRY_H

#include <sqlite3.h>
#include <unistd.h>

#include <chrono>

#include "support/log.h"

namespace channellist {

inline constexpr useconds_t kBusySleepMicroseconds = 100000;

inline constexpr int kQueryAttempts = 50;
inline constexpr int kStepAttempts = 50;
inline constexpr int kCommitAttempts = 50;
inline constexpr int kUpdateTagAttempts = 10;
inline constexpr int kBissKeyAttempts = 10;

// Sleeps for the whole time: a signal ends usleep early, and what is left is slept again.
inline void sleepBetweenAttempts() {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::microseconds kWhole(kBusySleepMicroseconds);
    auto const start = Clock::now();
    auto left = kWhole;
    while (left.count() > 0 && usleep(static_cast<useconds_t>(left.count())) != 0)
        left = kWhole - std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
}

// Calls `attempt` until it returns anything but SQLITE_BUSY, at most `attempts` times, with a
// message of the caller's site and a sleep after each busy result. Returns the last result.
template <typename Attempt>
int retryWhileBusy(int attempts, CallSite const& site, LogModule module, Attempt attempt) {
    int code = SQLITE_BUSY;
    for (; attempts > 0; --attempts) {
        code = attempt();
        if (code != SQLITE_BUSY)
            break;
        LOG_TEXT_AT(site, module, Error, " database is locked, try again");
        sleepBetweenAttempts();
    }
    return code;
}

}  // namespace channellist

#endif
