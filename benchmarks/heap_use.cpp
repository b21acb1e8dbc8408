#include "heap_use.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

bool counting = false;
benchmarks::HeapUse use;

void* allocated(void* block) {
    ++use.allocations;
    use.bytes += malloc_usable_size(block);
    use.peakBytes = std::max(use.peakBytes, use.bytes);
    return block;
}

}  // namespace

// The other forms of new and delete call these two.
void* operator new(std::size_t size) {
    void* const block = std::malloc(size > 0 ? size : 1);
    if (block == nullptr)
        throw std::bad_alloc();
    return counting ? allocated(block) : block;
}

void operator delete(void* block) noexcept {
    if (counting)
        use.bytes -= malloc_usable_size(block);
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept { operator delete(block); }

namespace benchmarks {

HeapUse heapUse(std::function<void()> const& work) {
    use = HeapUse();
    counting = true;
    work();
    counting = false;
    return use;
}

}  // namespace benchmarks
