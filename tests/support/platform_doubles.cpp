#include "support/platform_doubles.h"

#include <dlfcn.h>
#include <orv-debug/orv_debug.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

namespace platform {
namespace {

struct State {
    int sleepCount = 0;
    unsigned long long sleptMicroseconds = 0;
    std::function<void(int)> sleepHook;
    std::vector<std::string> commands;
    std::function<int(const std::string&)> commandHook;
    std::vector<Message> messages;
    int checkCount = 0;
    std::function<bool(unsigned int)> enabled;
    std::vector<std::string> openedPaths;
    std::map<std::string, std::string> redirections;
};

std::mutex stateMutex;
State state;

// The result of `action` on the state, which no other thread changes meanwhile.
template <typename Action>
auto locked(Action action) {
    std::lock_guard<std::mutex> const lock(stateMutex);
    return action(state);
}

// What this thread asked last and was told is enabled; 0 when nothing.
thread_local unsigned int enabledWord = 0;

constexpr char kPrefix[] = "%s:%d:%s(): ";

std::string formatted(const char* format, va_list arguments) {
    char* text = nullptr;
    int const length = vasprintf(&text, format, arguments);
    std::unique_ptr<char, decltype(&std::free)> const owner(text, std::free);
    return std::string(text, static_cast<std::size_t>(length));
}

Message takenApart(unsigned int word, const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    std::string const whole = formatted(format, again);
    va_end(again);
    Message message{word >> 16, word & 0xffff, format, "MALFORMED " + whole, "", "", 0};
    if (message.format.rfind(kPrefix, 0) == 0 && whole.back() == '\n' && enabledWord == word) {
        message.file = va_arg(arguments, const char*);
        message.line = va_arg(arguments, int);
        message.function = va_arg(arguments, const char*);
        auto const begin = whole.find("(): ") + 4;
        message.text = whole.substr(begin, whole.size() - begin - 1);
    }
    return message;
}

}  // namespace

void reset() {
    locked([](State& s) { s = State(); });
}

int sleepCount() {
    return locked([](State& s) { return s.sleepCount; });
}
unsigned long long sleptMicroseconds() {
    return locked([](State& s) { return s.sleptMicroseconds; });
}
void onSleep(std::function<void(int)> hook) {
    locked([&](State& s) { s.sleepHook = hook; });
}

std::vector<std::string> commands() {
    return locked([](State& s) { return s.commands; });
}
void onCommand(std::function<int(const std::string&)> hook) {
    locked([&](State& s) { s.commandHook = hook; });
}

std::vector<Message> messages() {
    return locked([](State& s) { return s.messages; });
}
void forgetMessages() {
    locked([](State& s) { s.messages.clear(); });
}
int checkCount() {
    return locked([](State& s) { return s.checkCount; });
}
void enableLevels(std::function<bool(unsigned int)> enabled) {
    locked([&](State& s) { s.enabled = enabled; });
}

std::vector<std::string> openedPaths() {
    return locked([](State& s) { return s.openedPaths; });
}
void redirectOpen(const std::string& path, const std::string& file) {
    locked([&](State& s) { s.redirections[path] = file; });
}

}  // namespace platform

using platform::locked;
using platform::State;

extern "C" int usleep(useconds_t microseconds) {
    Dl_info caller{};
    if (dladdr(__builtin_return_address(0), &caller) != 0 && caller.dli_fname != nullptr &&
        std::strstr(caller.dli_fname, "libsqlite3") != nullptr) {
        return 0;  // SQLite's own busy timeout
    }
    auto const [hook, count] = locked([&](State& s) {
        s.sleptMicroseconds += microseconds;
        ++s.sleepCount;
        return std::pair(s.sleepHook, s.sleepCount);
    });
    if (hook) {
        hook(count);
    }
    return 0;
}

extern "C" int system(const char* command) {
    auto const hook = locked([&](State& s) {
        s.commands.emplace_back(command);
        return s.commandHook;
    });
    return hook ? hook(command) : 0;
}

extern "C" int orvDebugCheckLevelGetFrameAndChunk(unsigned int* descriptor) {
    bool const isPlain = descriptor[1] == 0 && descriptor[2] == 0;
    bool const isEnabled = locked([&](State& s) {
        ++s.checkCount;
        return !s.enabled || s.enabled(descriptor[0] & 0xffff);
    });
    platform::enabledWord = isPlain && isEnabled ? descriptor[0] : 0;
    return isEnabled ? 1 : 0;
}

extern "C" void orvDebugOutput0(unsigned int* descriptor, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    auto message = platform::takenApart(descriptor[0], format, arguments);
    va_end(arguments);
    platform::enabledWord = 0;
    locked([&](State& s) { s.messages.push_back(std::move(message)); });
}

extern "C" int sqlite3_open(const char* path, sqlite3** connection) {
    static auto const realOpen =
        reinterpret_cast<decltype(&sqlite3_open)>(dlsym(RTLD_NEXT, "sqlite3_open"));
    std::string const file = locked([&](State& s) {
        s.openedPaths.emplace_back(path);
        auto const redirection = s.redirections.find(path);
        return redirection == s.redirections.end() ? std::string(path) : redirection->second;
    });
    return realOpen(file.c_str(), connection);
}
