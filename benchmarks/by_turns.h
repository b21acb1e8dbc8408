// Ways to the same result, timed one after another in every round: what disturbs the machine
// disturbs them all alike.
#ifndef BENCHMARKS_BY_TURNS_H
#define BENCHMARKS_BY_TURNS_H

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

struct Contender {
    std::string name;
    std::function<void()> run;
    std::function<void()> prepare = [] {};  // before each run, not timed
};

// Runs every contender once in each of the state's rounds (after one that does not count) and
// reports, beside the time of the first one as the benchmark's own: counter "NAME_us", the median
// of a contender's times in microseconds of this thread's processor time, and "NAME_ratio", the
// median over the rounds of the first contender's time divided by this one's.
void runByTurns(benchmark::State& state, std::vector<Contender> const& contenders);

}  // namespace benchmarks

#endif
