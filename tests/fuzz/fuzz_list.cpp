// The text of a list, as people edit it.
#include <cstdint>

#include "fuzz_lists.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    fuzz::expectOrders(channel_lists::parseList({reinterpret_cast<char const*>(data), size}));
    return 0;
}
