// What a piece of work takes from the C++ heap.
#ifndef BENCHMARKS_HEAP_USE_H
#define BENCHMARKS_HEAP_USE_H

#include <cstddef>
#include <functional>

namespace benchmarks {

struct HeapUse {
    std::size_t allocations = 0;
    std::size_t bytes = 0;      // in use now, with what malloc rounds up
    std::size_t peakBytes = 0;  // the most in use at a time
};

// Counts while `work` runs, on this thread; `operator new` of this program counts for the library
// too.
HeapUse heapUse(std::function<void()> const& work);

}  // namespace benchmarks

#endif
