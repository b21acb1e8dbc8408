// count-instructions SERVICES
//
// Reads one service list by the library, by its statements alone and by SQLiteCpp, for callgrind to
// count the instructions of each: a part of callgrind's output for each, named in its "desc" line.
// scripts/benchmark runs it under valgrind.
#include <channellist-access/db_access.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "benchmark_database.h"
#include "connection.h"
#include "plain_copy.h"
#include "recording.h"
#include "requests.h"
#include "scratch.h"

namespace {

using namespace benchmarks;

template <typename Run>
void count(char const* name, Run run) {
    CALLGRIND_START_INSTRUMENTATION;
    run();
    CALLGRIND_STOP_INSTRUMENTATION;
    CALLGRIND_DUMP_STATS_AT(name);
}

// What is made once per process or connection is made before counting.
void countServiceList(int services) {
    DatabaseCopy const file({services});
    Connection const connection(file.path());
    db = connection.get();
    readServiceList(services);
    Recording const statements({db}, [services] { readServiceList(services); });
    statements.replay();
    PlainCopy plainCopy(file.path(), statements);
    plainCopy.read();

    ResultSet rows;
    count(
        "library", [&] { rows = dbaccess::get_dbservices(kAllList); });
    count(
        "freeing", [&] { ResultSet().swap(rows); });
    count(
        "floor", [&] { statements.replay(); });
    count("sqlitecpp", [&] { plainCopy.read(); });
}

}  // namespace

int main(int argc, char** argv) {
    int const services = argc == 2 ? std::atoi(argv[1]) : 0;
    if (services <= 0) {
        std::fprintf(stderr, "usage: count-instructions SERVICES\n");
        return 2;
    }
    try {
        Scratch const scratch;
        countServiceList(services);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "count-instructions: %s\n", error.what());
        return 1;
    }
    return 0;
}
