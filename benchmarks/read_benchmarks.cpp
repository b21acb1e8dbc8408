// The reads beside SQLite alone, the cost of a request without rows, and the memory of a result.
#include <channellist-access/db_access.h>
#include <boost/smart_ptr/make_shared.hpp>

#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

#include "benchmark_database.h"
#include "by_turns.h"
#include "connection.h"
#include "dbservice_query_result/service_columns.h"
#include "heap_use.h"
#include "plain_copy.h"
#include "recording.h"
#include "requests.h"

namespace benchmarks {
namespace {

using channel_database::Indexes;

// What any library with this answer does for a row: makes the shared row of the 16 columns, here
// with texts of SQLite's row in the place of converted ones.
int answerRow(void* rows, int count, char** values, char** /*names*/) {
    using channellist::ServiceColumn;
    constexpr ServiceColumn kShown[] = {
        ServiceColumn::ChannelNum, ServiceColumn::ExternalName, ServiceColumn::MediaType,
        ServiceColumn::Pid,        ServiceColumn::Encrypted,    ServiceColumn::NetworkId,
        ServiceColumn::Uuid,       ServiceColumn::TtxCharEnc,   ServiceColumn::TtxPreviewPage,
        ServiceColumn::SVisible,   ServiceColumn::SSelectable,  ServiceColumn::Pid,
        ServiceColumn::Lcn,        ServiceColumn::NITId,        ServiceColumn::Pid,
        ServiceColumn::Hdtv,
    };
    if (count < static_cast<int>(channellist::kServiceColumnCount))
        return 0;  // the lookup of the list's attributes
    auto const row = boost::make_shared<ResultRow>();
    row->reserve(std::size(kShown));
    for (ServiceColumn const column : kShown) {
        char const* const text = values[static_cast<std::size_t>(column)];
        row->emplace_back(text != nullptr ? text : "");
    }
    static_cast<ResultSet*>(rows)->push_back(row);
    return 0;
}

void makeAnswer(Recording const& statements, int services) {
    ResultSet rows;
    statements.replay(answerRow, &rows);
    if (rows.size() != static_cast<std::size_t>(services))
        throw std::runtime_error("the answer's rows were not made");
}

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
                       {"answer", [&] { makeAnswer(statements, services); }},
                       {"sqlitecpp", [&] { plainCopy.read(); }}});
}

// The first request of a process: a connection, the schema and the views come before the list.
void firstRequest(benchmark::State& state) {
    int const services = static_cast<int>(state.range(0));
    DatabaseCopy const file({services});
    auto onNewConnection = [&](auto const& work) {
        Connection const connection(file.path());
        db = connection.get();
        work();
    };
    sqlite3* recorded = nullptr;
    std::optional<Recording> statements;
    onNewConnection([&] {
        statements.emplace(std::vector<sqlite3*>{db}, [&] { readServiceList(services); });
        recorded = db;
    });
    auto const replay = [&] {
        statements->redirect(std::exchange(recorded, db), db);
        statements->replay();
    };
    runByTurns(state, {{"library", [&] { onNewConnection([&] { readServiceList(services); }); }},
                       {"floor", [&] { onNewConnection(replay); }}});
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

// What a process pays that looks for changes of a list: the question whether anybody has committed,
// and its answer when nobody has.
void lookForChanges(benchmark::State& state) {
    DatabaseCopy const file({1000});
    Connection const connection(file.path());
    db = connection.get();
    runByTurns(state, {{"look", [] {
                            sqlexec(db, "PRAGMA data_version", nullptr, nullptr, nullptr);
                        }}});
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
BENCHMARK_CAPTURE(serviceList, indexed, Indexes::Recommended)->Arg(12)->Apply(manyRounds);
BENCHMARK(firstRequest)->Arg(12)->Apply(manyRounds);
BENCHMARK(folderList)->Arg(kListCount)->Apply(manyRounds);
BENCHMARK(requestWithoutRows)->Apply(manyRounds);
BENCHMARK(lookForChanges)->Apply(manyRounds);
BENCHMARK(resultMemory)->Arg(20000)->Iterations(1);

}  // namespace
}  // namespace benchmarks
