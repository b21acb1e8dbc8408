// Measures how long each entry point waits for a database that stays locked; scripts/measure-waits
// runs it. All of them wait at once, each in a process of its own.
#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "child_process.h"
#include "entry_points.h"
#include "quiet_platform.h"
#include "workshop.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsOf(EntryPoint const& entry) {
    Clock::time_point const start = Clock::now();
    entry.call();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void waitForEnd(int pipe) {
    char byte;
    while (read(pipe, &byte, 1) > 0) {
    }
}

// With the file open before it is locked, as in a process that has been running for a while.
pid_t startWaiting(EntryPoint const& entry, bool withBusyTimeout, int const (&locked)[2],
                   double& seconds) {
    return startChild([&] {
        close(locked[1]);
        platform::sleepsTakeTime = true;
        if (withBusyTimeout)
            dbaccess::get_dbservices("list-of-all-services");
        else
            dbaccess::select_Folders();
        waitForEnd(locked[0]);
        seconds = secondsOf(entry);
    });
}

void lock(std::string const& file) {
    sqlite3* connection = nullptr;
    if (sqlite3_open(file.c_str(), &connection) != SQLITE_OK ||
        sqlite3_exec(connection, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) != SQLITE_OK)
        std::abort();
}

}  // namespace

int main() {
    Workshop workshop(Journal::Rollback, true);
    struct Waits {
        double seconds[32][2];
    };
    auto& waits = sharedValue<Waits>();
    int locked[2];
    std::vector<pid_t> children;
    if (pipe(locked) != 0 || kEntryPoints.size() > std::size(waits.seconds))
        return EXIT_FAILURE;
    for (std::size_t entry = 0; entry < kEntryPoints.size(); ++entry)
        for (int const timeout : {0, 1})
            children.push_back(startWaiting(kEntryPoints[entry], timeout == 1, locked,
                                            waits.seconds[entry][timeout]));
    sleep(3);  // all have opened the file
    lock("/var/tvservice/servicelist.db");
    lock(workshop.ottFile());
    close(locked[1]);
    for (pid_t const child : children)
        endOf(child);
    std::puts("| entry point | T = 0 | T = 1 s |\n|---|---|---|");
    for (std::size_t entry = 0; entry < kEntryPoints.size(); ++entry)
        std::printf("| `%s` | %.1f s | %.1f s |\n", kEntryPoints[entry].name,
                    waits.seconds[entry][0], waits.seconds[entry][1]);
}
