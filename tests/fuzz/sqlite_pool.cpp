#include "sqlite_pool.h"

#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <new>

namespace fuzz {
namespace {

// Before each block stands its size class; a free block holds the next one of its class.
struct alignas(16) Header {
    unsigned sizeClass;
};

struct FreeBlock {
    FreeBlock* next;
};

std::array<FreeBlock*, 32> freeBlocks;

constexpr int bytesOf(unsigned sizeClass) { return 16 << sizeClass; }

unsigned sizeClassOf(int bytes) {
    unsigned found = 0;
    while (bytesOf(found) < bytes)
        ++found;
    return found;
}

Header* headerOf(void* block) { return static_cast<Header*>(block) - 1; }

void* allocate(int bytes) {
    unsigned const sizeClass = sizeClassOf(bytes);
    if (FreeBlock* const block = freeBlocks[sizeClass]) {
        freeBlocks[sizeClass] = block->next;
        return block;
    }
    auto const size = static_cast<std::size_t>(bytesOf(sizeClass));
    auto* const header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (header == nullptr)
        return nullptr;
    header->sizeClass = sizeClass;
    return header + 1;
}

void release(void* block) {
    if (block == nullptr)
        return;
    FreeBlock*& first = freeBlocks[headerOf(block)->sizeClass];
    first = new (block) FreeBlock{first};
}

int sizeOf(void* block) { return block == nullptr ? 0 : bytesOf(headerOf(block)->sizeClass); }

void* resize(void* block, int bytes) {
    if (bytes <= sizeOf(block))
        return block;
    void* const larger = allocate(bytes);
    if (larger == nullptr)
        return nullptr;
    std::memcpy(larger, block, static_cast<std::size_t>(sizeOf(block)));
    release(block);
    return larger;
}

int rounded(int bytes) { return bytesOf(sizeClassOf(bytes)); }
int begin(void*) { return SQLITE_OK; }
void end(void*) {}

}  // namespace

void poolSqliteMemory() {
    static sqlite3_mem_methods const methods = {allocate, release, resize, sizeOf,
                                                rounded,  begin,   end,    nullptr};
    sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    sqlite3_config(SQLITE_CONFIG_SINGLETHREAD);
}

}  // namespace fuzz
