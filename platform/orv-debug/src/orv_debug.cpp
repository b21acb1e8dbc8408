#include <orv-debug/orv_debug.h>

#include <cstdarg>
#include <cstdlib>

#include "message_filter.h"
#include "message_writer.h"

namespace {

orvdebug::MessageFilter const& filter() noexcept {
    static orvdebug::MessageFilter const instance = [] {
        char const* const text = std::getenv("ORV_DEBUG");
        return orvdebug::MessageFilter(text != nullptr ? text : "");
    }();
    return instance;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int orvDebugCheckLevelGetFrameAndChunk(
    unsigned int* descriptor) {
    return filter().enables(descriptor[0] >> 16, descriptor[0] & 0xffff) ? 1 : 0;
}

extern "C" __attribute__((visibility("default"))) void orvDebugOutput0(unsigned int* /*descriptor*/,
                                                                       char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    orvdebug::writeMessageV(format, arguments);
    va_end(arguments);
}
