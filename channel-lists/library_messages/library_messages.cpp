#include "library_messages/library_messages.h"

#include <orv-debug/orv_debug.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <vector>

#include "listener.h"
#include "message_filter.h"

namespace channel_lists {
namespace {

constexpr unsigned int kErrorLevel = 1000;
constexpr std::size_t kMostReasons = 5;

std::unique_ptr<orvdebug::MessageFilter const> traced;
std::vector<std::string> reasons;
std::string last;

// "file.cpp:12:name(): reason\n"
std::string reasonOf(std::string const& message) {
    constexpr char kEndOfPlace[] = "(): ";
    auto const place = message.find(kEndOfPlace);
    auto const begin = message.find_first_not_of(
        ' ', place == std::string::npos ? 0 : place + sizeof kEndOfPlace - 1);
    auto const end = message.find_last_not_of(" \n");
    return begin == std::string::npos || begin > end ? std::string()
                                                     : message.substr(begin, end - begin + 1);
}

std::string formatted(char const* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    int const length = vsnprintf(nullptr, 0, format, arguments);
    std::string text(length < 0 ? 0 : static_cast<std::size_t>(length) + 1, '\0');
    vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    if (!text.empty())
        text.pop_back();
    return text;
}

void keepReason(std::string const& message) {
    std::string reason = reasonOf(message);
    last = reason;
    if (reasons.size() < kMostReasons &&
        std::find(reasons.begin(), reasons.end(), reason) == reasons.end())
        reasons.push_back(std::move(reason));
}

}  // namespace

void traceMessages(std::string const& levels) {
    traced = std::make_unique<orvdebug::MessageFilter const>(levels);
}

void forgetMessages() { reasons.clear(); }

std::string lastMessage() { return last; }

std::vector<std::string> const& messageReasons() { return reasons; }

}  // namespace channel_lists

// Called from SQLite's frames, too: no exception leaves them.
extern "C" __attribute__((visibility("default"))) int orvDebugCheckLevelGetFrameAndChunk(
    unsigned int* descriptor) {
    unsigned int const level = descriptor[0] & 0xffff;
    return level == channel_lists::kErrorLevel ||
                   (channel_lists::traced &&
                    channel_lists::traced->enables(descriptor[0] >> 16, level))
               ? 1
               : 0;
}

extern "C" __attribute__((visibility("default"))) void orvDebugOutput0(unsigned int* /*descriptor*/,
                                                                       char const* format, ...) {
    using namespace channel_lists;
    va_list arguments;
    va_start(arguments, format);
    try {
        std::string const message = formatted(format, arguments);
        traced ? listener().trace(message) : keepReason(message);
    } catch (std::bad_alloc const&) {
        listener().trace("no memory to keep a message of the library\n");
    }
    va_end(arguments);
}
