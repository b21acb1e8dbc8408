// The reads beside SQLite alone, the cost of a request without rows, and the memory of a result.
#include <channellist-access/db_access.h>

#include "benchmark_database.h"
#include "by_turns.h"
#include "connection.h"
#include "heap_use.h"
#include "plain_copy.h"
#include "recording.h"
#include "requests.h"

namespace benchmarks {
namespace {

using channel_database::Indexes;

void serviceList(benchmark::State& state, Indexes indexes) {
    int const services = static_cast<int>(state.range(0));
    DatabaseCopy const file({services, indexes});
    Connection const connection(file.path());
    db = connection.get();
    auto const request = [services] { readServiceList(services); };
    request();
    Recording const statements({db}, request);
    PlainCopy plainCopy(file.path(), statements);
    runByTurns(state, {{"library", request},
                       {"floor", [&] { statements.replay(); }},
                       {"sqlitecpp", [&] { plainCopy.read(); }}});
}

void folderList(benchmark::State& state) {
    DatabaseCopy const file({1000});
    Connection const connection(file.path());
    db = connection.get();
    readFolderList();
    Recording const statements({db}, readFolderList);
    runByTurns(state, {{"library", readFolderList}, {"floor", [&] { statements.replay(); }}});
}

// What a service list costs before its first row: the whole request for a list that does not
// exist, and the parsing of the service query in it.
void requestWithoutRows(benchmark::State& state) {
    DatabaseCopy const file({1000});
    Connection const connection(file.path());
    db = connection.get();
    auto const request = [] { dbaccess::get_dbservices("no such list"); };
    request();
    Recording const recording({db}, request);
    std::string const query = serviceQuery(recording);
    auto const parse = [&] {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(db, query.c_str(), -1, &statement, nullptr);
        sqlite3_finalize(statement);
    };
    runByTurns(state, {{"request", request}, {"parsing", parse}});
}

void resultMemory(benchmark::State& state) {
    int const services = static_cast<int>(state.range(0));
    DatabaseCopy const file({services});
    Connection const connection(file.path());
    db = connection.get();
    readServiceList(services);
    HeapUse use;
    for ([[maybe_unused]] auto _ : state) {
        ResultSet rows;
        use = heapUse([&] { rows = dbaccess::get_dbservices(kAllList); });
    }
    state.counters["result_bytes"] = static_cast<double>(use.bytes);
    state.counters["peak_bytes"] = static_cast<double>(use.peakBytes);
    state.counters["rows"] = services;
}

void manyRounds(benchmark::internal::Benchmark* read) {
    read->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(201);
}

void sizes(benchmark::internal::Benchmark* read) {
    for (int const services : {100, 1000, 5000, 20000})
        read->Arg(services);
    read->UseManualTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(serviceList, indexed, Indexes::Recommended)->Apply(sizes)->Iterations(31);
BENCHMARK_CAPTURE(serviceList, bare, Indexes::PrimaryKeysOnly)->Apply(sizes)->Iterations(3);
BENCHMARK(folderList)->Arg(kListCount)->Apply(manyRounds);
BENCHMARK(requestWithoutRows)->Apply(manyRounds);
BENCHMARK(resultMemory)->Arg(20000)->Iterations(1);

}  // namespace
}  // namespace benchmarks
