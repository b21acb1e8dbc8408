#include "database/time_limit.h"

#include <unistd.h>

#include <ctime>
#include <iostream>

namespace tool {
namespace {

constexpr int kInstructionsBetween = 20000;  // of SQLite's machine
constexpr double kSecondsUnseen = 1;

int limitSeconds = 60;
double began = 0;
bool reached = false;
bool shown = false;

double secondsOfWork() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

int interruptAtTheLimit(void* /*unused*/) {
    reached = reached || secondsOfWork() - began > limitSeconds;
    return reached ? 1 : 0;
}

}  // namespace

void TimeLimit::watch(sqlite3* connection) {
    sqlite3_progress_handler(connection, kInstructionsBetween, interruptAtTheLimit, nullptr);
}

void TimeLimit::set(int seconds) { limitSeconds = seconds; }

void TimeLimit::restart(std::string const& task) {
    began = secondsOfWork();
    reached = false;
    if (began > kSecondsUnseen && isatty(STDERR_FILENO) == 1) {
        shown = true;
        std::cerr << "\rLooking at " << task << "\x1b[K" << std::flush;
    }
}

void TimeLimit::hideTask() {
    if (shown)
        std::cerr << "\r\x1b[K" << std::flush;
    shown = false;
}

bool TimeLimit::isReached() { return reached; }

std::string TimeLimit::sentence() {
    return "reading it did not end within " + std::to_string(limitSeconds) +
           " seconds: a view or trigger may have no end";
}

}  // namespace tool
