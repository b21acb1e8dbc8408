// The conversion of one service row, apart from the query that delivers it.
#include <channellist-access/db_access.h>

#include <benchmark/benchmark.h>

#include "benchmark_database.h"
#include "connection.h"
#include "heap_use.h"
#include "recording.h"
#include "requests.h"

namespace benchmarks {
namespace {

constexpr int kServices = 1000;

// A row as the service query delivers it, as strings and as what SQLite hands to a callback.
struct ServiceRow {
    ResultRow texts;
    std::vector<char*> values;
};

int keepRow(void* context, int count, char** values, char** /*names*/) {
    ServiceRow& row = static_cast<std::vector<ServiceRow>*>(context)->emplace_back();
    for (int column = 0; column < count; ++column)
        row.texts.emplace_back(values[column] != nullptr ? values[column] : "");
    for (std::string& text : row.texts)
        row.values.push_back(text.data());
    return 0;
}

std::vector<ServiceRow> serviceRows() {
    DatabaseCopy const file({kServices});
    Connection const connection(file.path());
    db = connection.get();
    auto const request = [] { readServiceList(kServices); };
    request();
    std::vector<ServiceRow> rows;
    connection.execute(serviceQuery(Recording({db}, request)), keepRow, &rows);
    return rows;
}

void assembleItem(ServiceRow& row, ResultSet& /*out*/) { dbaccess::fetchServiceItem(row.texts); }

void convertRow(ServiceRow& row, ResultSet& out) {
    dbaccess::computeService(static_cast<int>(row.texts.size()), row.texts, &out);
}

void callBack(ServiceRow& row, ResultSet& out) {
    dbaccess::service_callback(&out, static_cast<int>(row.values.size()), row.values.data(),
                               row.values.data());
}

void rowConversion(benchmark::State& state, void (*convert)(ServiceRow&, ResultSet&)) {
    std::vector<ServiceRow> rows = serviceRows();
    auto const convertAll = [&] {
        ResultSet out;
        out.reserve(rows.size());
        for (ServiceRow& row : rows)
            convert(row, out);
    };
    for ([[maybe_unused]] auto _ : state)
        convertAll();
    auto const count = static_cast<double>(rows.size());
    state.counters["row_seconds"] = benchmark::Counter(
        count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["allocations"] = static_cast<double>(heapUse(convertAll).allocations) / count;
}

void repeated(benchmark::internal::Benchmark* conversion) {
    conversion->Repetitions(9)->ReportAggregatesOnly();
}

BENCHMARK_CAPTURE(rowConversion, fetchServiceItem, assembleItem)->Apply(repeated);
BENCHMARK_CAPTURE(rowConversion, computeService, convertRow)->Apply(repeated);
BENCHMARK_CAPTURE(rowConversion, service_callback, callBack)->Apply(repeated);

}  // namespace
}  // namespace benchmarks
