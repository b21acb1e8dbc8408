#include "library_messages/library_messages.h"

#include <orv-debug/orv_debug.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iostream>
#include <memory>
#include <vector>

#include "message_filter.h"
#include "message_writer.h"
#include "output/display_text.h"

namespace tool {
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

void keepReason(char const* format, va_list arguments) {
    char text[1024];
    vsnprintf(text, sizeof text, format, arguments);
    std::string reason = reasonOf(text);
    last = reason;
    if (reasons.size() < kMostReasons &&
        std::find(reasons.begin(), reasons.end(), reason) == reasons.end())
        reasons.push_back(std::move(reason));
}

}  // namespace

void traceMessages(std::string const& levels) {
    traced = std::make_unique<orvdebug::MessageFilter const>(levels);
}

std::string lastMessage() { return last; }

void explainByMessages() {
    for (std::string const& reason : reasons)
        std::cerr << "channellist: the library says: " << displayText(reason) << "\n";
}

}  // namespace tool

// Called from SQLite's frames, too: no exception leaves them.
extern "C" __attribute__((visibility("default"))) int orvDebugCheckLevelGetFrameAndChunk(
    unsigned int* descriptor) {
    unsigned int const level = descriptor[0] & 0xffff;
    return level == tool::kErrorLevel ||
                   (tool::traced && tool::traced->enables(descriptor[0] >> 16, level))
               ? 1
               : 0;
}

extern "C" __attribute__((visibility("default"))) void orvDebugOutput0(unsigned int* /*descriptor*/,
                                                                       char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    try {
        if (tool::traced)
            orvdebug::writeMessageV(format, arguments);
        else
            tool::keepReason(format, arguments);
    } catch (std::bad_alloc const&) {
        orvdebug::writeMessage("channellist: no memory to keep a message of the library\n");
    }
    va_end(arguments);
}
