#include "support/platform_doubles.h"

#include <dlfcn.h>
#include <orv-debug/orv_debug.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace platform {
namespace {

// What was asked last and found enabled; 0 when nothing.
unsigned int enabledWord = 0;

constexpr char kPrefix[] = "%s:%d:%s(): ";

Message takenApart(unsigned int word, char const* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    char* text = nullptr;
    int const length = vasprintf(&text, format, again);
    va_end(again);
    std::string const whole(text, static_cast<std::size_t>(length));
    std::free(text);
    Message message{word >> 16, word & 0xffff, format, "MALFORMED " + whole, "", "", 0};
    if (message.format.rfind(kPrefix, 0) == 0 && whole.back() == '\n' && enabledWord == word) {
        message.file = va_arg(arguments, char const*);
        message.line = va_arg(arguments, int);
        message.function = va_arg(arguments, char const*);
        auto const begin = whole.find("(): ") + 4;
        message.text = whole.substr(begin, whole.size() - begin - 1);
    }
    return message;
}

}  // namespace

}  // namespace platform

using platform::state;

extern "C" int usleep(useconds_t microseconds) {
    Dl_info caller{};
    if (dladdr(__builtin_return_address(0), &caller) != 0 && caller.dli_fname != nullptr &&
        std::strstr(caller.dli_fname, "libsqlite3") != nullptr)
        return 0;  // SQLite's own busy timeout
    state.sleptMicroseconds += microseconds;
    ++state.sleepCount;
    if (state.onSleep)
        state.onSleep(state.sleepCount);
    return 0;
}

extern "C" int system(char const* command) {
    ++state.commandCount;
    return state.onCommand ? state.onCommand(command) : 0;
}

extern "C" int orvDebugCheckLevelGetFrameAndChunk(unsigned int* descriptor) {
    ++state.checkCount;
    bool const isPlain = descriptor[1] == 0 && descriptor[2] == 0;
    bool const isEnabled = state.isEnabled(descriptor[0] & 0xffff);
    platform::enabledWord = isPlain && isEnabled ? descriptor[0] : 0;
    return isEnabled ? 1 : 0;
}

extern "C" void orvDebugOutput0(unsigned int* descriptor, char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    state.messages.push_back(platform::takenApart(descriptor[0], format, arguments));
    va_end(arguments);
    platform::enabledWord = 0;
}

extern "C" int sqlite3_open(char const* path, sqlite3** connection) {
    static auto const realOpen =
        reinterpret_cast<decltype(&sqlite3_open)>(dlsym(RTLD_NEXT, "sqlite3_open"));
    state.openedPaths.emplace_back(path);
    bool const isChannelDatabase = state.openedPaths.back() == platform::kChannelDatabasePath;
    return realOpen(isChannelDatabase ? state.channelDatabase.c_str() : path, connection);
}
