// A message that nobody asked for, beside the bare question whether its level is enabled.
#include <benchmark/benchmark.h>

#include <stdexcept>

#include "heap_use.h"
#include "support/log.h"

namespace benchmarks {
namespace {

using namespace channellist;

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

int computed = 0;

int computeArgument() { return ++computed; }

void writeDisabledMessage() { LOG_FORMAT(Row, "computed:%d", computeArgument()); }

void askForLevel() {
    LogDescriptor descriptor(kLogModule, LogLevel::Row);
    benchmark::DoNotOptimize(descriptor.enabled());
}

void disabledMessage(benchmark::State& state, void (*work)()) {
    for ([[maybe_unused]] auto _ : state)
        work();
    if (computed != 0)
        throw std::runtime_error("a disabled message computed its argument");
    state.counters["allocations"] = static_cast<double>(heapUse(work).allocations);
}

void repeated(benchmark::internal::Benchmark* message) {
    message->Repetitions(9)->ReportAggregatesOnly();
}

BENCHMARK_CAPTURE(disabledMessage, message, writeDisabledMessage)->Apply(repeated);
BENCHMARK_CAPTURE(disabledMessage, level check alone, askForLevel)->Apply(repeated);

}  // namespace
}  // namespace benchmarks
