// The two calls of the platform's debug library that this project makes. The set ships its own
// liborv-debug; platform/orv-debug/src holds a stand-in for machines without one.
#ifndef ORV_DEBUG_ORV_DEBUG_H
#define ORV_DEBUG_ORV_DEBUG_H

#ifdef __cplusplus
extern "C" {
#endif

/// Tells whether messages of one module and level are written.
///
/// @param descriptor three words: {module << 16 | level, 0, 0}; the last two belong to the debug
///                   library, which may note in them what it found.
/// @return non-zero when enabled, 0 when not.
int orvDebugCheckLevelGetFrameAndChunk(unsigned int* descriptor);

/// Writes one message of the module and level in `descriptor`, formatted as by printf. Call it
/// only after orvDebugCheckLevelGetFrameAndChunk answered non-zero for the same descriptor.
void orvDebugOutput0(unsigned int* descriptor, char const* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;

#ifdef __cplusplus
}
#endif

#endif
