#include "failing_memory.h"

#include <sqlite3.h>

#include <cstdlib>
#include <new>

#include "fault.h"

namespace memory {
namespace {

long newBlocks = 0;
long sqliteBlocks = 0;
sqlite3_mem_methods real;

void* allocateForSqlite(int size) {
    void* const block = fault.strikes(FaultKind::SqliteMemory) ? nullptr : real.xMalloc(size);
    sqliteBlocks += block != nullptr ? 1 : 0;
    return block;
}

void* growForSqlite(void* block, int size) {
    return fault.strikes(FaultKind::SqliteMemory) ? nullptr : real.xRealloc(block, size);
}

void freeForSqlite(void* block) {
    sqliteBlocks -= block != nullptr ? 1 : 0;
    real.xFree(block);
}

void* allocate(std::size_t size) noexcept {
    void* const block = fault.strikes(FaultKind::New) ? nullptr : std::malloc(size);
    newBlocks += block != nullptr ? 1 : 0;
    return block;
}

void release(void* block) noexcept {
    newBlocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

}  // namespace

void install() {
    sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0);  // every allocation passes here
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &real);
    sqlite3_mem_methods struck = real;
    struck.xMalloc = allocateForSqlite;
    struck.xRealloc = growForSqlite;
    struck.xFree = freeForSqlite;
    sqlite3_config(SQLITE_CONFIG_MALLOC, &struck);
}

long liveBlocks() { return newBlocks + sqliteBlocks; }

}  // namespace memory

void* operator new(std::size_t size) {
    void* const block = memory::allocate(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return memory::allocate(size);
}
void operator delete(void* block) noexcept { memory::release(block); }
void operator delete(void* block, std::size_t) noexcept { memory::release(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { memory::release(block); }
