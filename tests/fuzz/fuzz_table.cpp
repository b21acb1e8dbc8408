// The table of a list, as spreadsheets write it.
#include <cstdint>

#include "fuzz_lists.h"
#include "lists/list_csv.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    channel_lists::isCsv(text);
    fuzz::expectOrders(channel_lists::parseCsv(text));
    return 0;
}
