#include "message_writer.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>

namespace orvdebug {
namespace {

// Also waits until a standard error that somebody made non-blocking takes more.
bool maySucceedLater(int failure) noexcept {
    if (failure != EAGAIN)
        return failure == EINTR;
    pollfd standardError = {STDERR_FILENO, POLLOUT, 0};
    return poll(&standardError, 1, -1) >= 0 || errno == EINTR;
}

// The rest of a message that the kernel took in part follows under the same lock. Any other failure
// drops the rest: standard error is the place where one would report it.
void writeWhole(char const* text, std::size_t length) noexcept {
    // The kernel keeps writes to a pipe whole up to PIPE_BUF only; the lock does it for any length.
    static std::mutex mutex;
    std::lock_guard<std::mutex> const lock(mutex);
    while (length > 0) {
        ssize_t const written = write(STDERR_FILENO, text, length);
        if (written > 0) {
            text += written;
            length -= static_cast<std::size_t>(written);
        } else if (written == 0 || !maySucceedLater(errno)) {
            return;
        }
    }
}

}  // namespace

void writeMessageV(char const* format, va_list arguments) noexcept {
    int const callersErrno = errno;
    char shortMessage[1024];
    va_list again;
    va_copy(again, arguments);
    int const formatted = vsnprintf(shortMessage, sizeof shortMessage, format, arguments);
    if (formatted < 0) {
        writeWhole(format, std::strlen(format));
    } else if (static_cast<std::size_t>(formatted) < sizeof shortMessage) {
        writeWhole(shortMessage, static_cast<std::size_t>(formatted));
    } else {
        std::size_t const size = static_cast<std::size_t>(formatted) + 1;
        std::unique_ptr<char[]> const longMessage(new (std::nothrow) char[size]);
        if (longMessage != nullptr && vsnprintf(longMessage.get(), size, format, again) >= 0)
            writeWhole(longMessage.get(), size - 1);
        else
            writeWhole(shortMessage, sizeof shortMessage - 1);
    }
    va_end(again);
    errno = callersErrno;
}

void writeMessage(char const* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    writeMessageV(format, arguments);
    va_end(arguments);
}

}  // namespace orvdebug
