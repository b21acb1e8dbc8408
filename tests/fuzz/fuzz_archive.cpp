// Archives of a receiver's settings: any is read or refused, and nothing else happens.
#include <cstdint>
#include <stdexcept>

#include "enigma2_archive.h"

using namespace channel_database;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    try {
        readEnigma2Archive({reinterpret_cast<char const*>(data), size}, "a");
    } catch (std::runtime_error const&) {
        return 0;
    }
    return 0;
}
