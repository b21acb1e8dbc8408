#include "by_turns.h"

#include <algorithm>
#include <ctime>

namespace benchmarks {

namespace {

// Of this thread: other programs and the waiting for the disk do not count.
double processorSeconds() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double secondsOf(Contender const& contender) {
    contender.prepare();
    double const start = processorSeconds();
    contender.run();
    return processorSeconds() - start;
}

double median(std::vector<double> values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

void runByTurns(benchmark::State& state, std::vector<Contender> const& contenders) {
    std::size_t const count = contenders.size();
    for (Contender const& contender : contenders)
        secondsOf(contender);
    std::vector<std::vector<double>> seconds(count);
    std::vector<std::vector<double>> ratios(count);
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::vector<double> round(count);
        for (std::size_t i = 0; i < count; ++i, ++turn)
            round[turn % count] = secondsOf(contenders[turn % count]);
        ++turn;  // another one begins the next round
        for (std::size_t i = 0; i < count; ++i) {
            seconds[i].push_back(round[i]);
            ratios[i].push_back(round[0] / round[i]);
        }
        state.SetIterationTime(round[0]);
    }
    for (std::size_t i = 0; i < count; ++i) {
        state.counters[contenders[i].name + "_us"] = median(seconds[i]) * 1e6;
        if (i > 0)
            state.counters[contenders[i].name + "_ratio"] = median(ratios[i]);
    }
}

}  // namespace benchmarks
