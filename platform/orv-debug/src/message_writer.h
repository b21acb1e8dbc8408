// Writing of whole messages to standard error.
#ifndef ORV_DEBUG_MESSAGE_WRITER_H
#define ORV_DEBUG_MESSAGE_WRITER_H

#include <cstdarg>

namespace orvdebug {

/// Formats a message of any length as printf does and writes it in one piece; threads wait for each
/// other. `errno` keeps its value. A message that cannot be formatted is replaced by its format,
/// one for which there is no memory is cut.
void writeMessageV(char const* format, va_list arguments) noexcept
    __attribute__((format(printf, 1, 0)));

void writeMessage(char const* format, ...) noexcept __attribute__((format(printf, 1, 2)));

}  // namespace orvdebug

#endif
