// channellist-benchmarks: Google Benchmark's options; scripts/benchmark says how it is run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>

#include "index_benchmarks.h"
#include "scratch.h"

int main(int argc, char** argv) {
    try {
        benchmarks::Scratch const scratch;
        benchmark::Initialize(&argc, argv);
        if (benchmark::ReportUnrecognizedArguments(argc, argv))
            return 2;
        benchmarks::registerIndexBenchmarks();
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "channellist-benchmarks: %s\n", error.what());
        return 1;
    }
    return 0;
}
