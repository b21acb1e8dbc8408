// What each recommended index is worth to each request.
#ifndef BENCHMARKS_INDEX_BENCHMARKS_H
#define BENCHMARKS_INDEX_BENCHMARKS_H

namespace benchmarks {

// Registers one benchmark for every index and request: "withoutIndex/INDEX/REQUEST".
void registerIndexBenchmarks();

}  // namespace benchmarks

#endif
