// Messages to the platform's debug library.
//
// Every message begins with its call site ("file:line:function(): ") and ends with a line feed. The
// level is asked before any argument is computed, so a disabled message costs one call. A file sets
// its module once:
//
//     constexpr LogModule kLogModule = LogModule::DatabaseAccess;
#ifndef CHANNELLIST_SUPPORT_LOG_H
#define CHANNELLIST_SUPPORT_LOG_H

#include <orv-debug/orv_debug.h>

namespace channellist {

enum class LogModule : unsigned int {
    FolderRow = 0x1,  // the "Called" trace of the folder row callback alone
    BissKey = 0xb4,
    ItemAssembly = 0xd2,
    DatabaseAccess = 0xda,
};

enum class LogLevel : unsigned int {
    Trace = 1,  // entry, exit and open of the requests
    Error = 1000,
    Notice = 3000,  // unusual but handled
    Verbose = 4000,
    Row = 5000,  // once a row
};

// Where a message comes from. A helper that logs for its caller is handed the caller's.
struct CallSite {
    char const* file;
    int line;
    char const* function;
};

struct LogDescriptor {
    LogDescriptor(LogModule module, LogLevel level)
        : words{static_cast<unsigned int>(module) << 16 | static_cast<unsigned int>(level), 0, 0} {}

    bool enabled() { return orvDebugCheckLevelGetFrameAndChunk(words) != 0; }

    unsigned int words[3];
};

}  // namespace channellist

#ifdef __FILE_NAME__
#define CHANNELLIST_FILE __FILE_NAME__
#else
#include <cstring>
#define CHANNELLIST_FILE \
    (std::strrchr(__FILE__, '/') != nullptr ? std::strrchr(__FILE__, '/') + 1 : __FILE__)
#endif

#define CALL_SITE (::channellist::CallSite{CHANNELLIST_FILE, __LINE__, __func__})
// Where messages carry an entry point's name that is not the function's own.
#define CALL_SITE_OF(entryPoint) (::channellist::CallSite{CHANNELLIST_FILE, __LINE__, (entryPoint)})

// A message with arguments, for the call site `site` of a caller.
#define LOG_FORMAT_AT(site, module, level, format, ...)                                       \
    do {                                                                                      \
        ::channellist::LogDescriptor logDescriptor((module), ::channellist::LogLevel::level); \
        if (logDescriptor.enabled())                                                          \
            orvDebugOutput0(logDescriptor.words, "%s:%d:%s(): " format "\n", (site).file,     \
                            (site).line, (site).function, __VA_ARGS__);                       \
    } while (false)

// A message without arguments, for the call site `site` of a caller.
#define LOG_TEXT_AT(site, module, level, text)                                                \
    do {                                                                                      \
        ::channellist::LogDescriptor logDescriptor((module), ::channellist::LogLevel::level); \
        if (logDescriptor.enabled())                                                          \
            orvDebugOutput0(logDescriptor.words, "%s:%d:%s(): " text "\n", (site).file,       \
                            (site).line, (site).function);                                    \
    } while (false)

#define LOG_FORMAT(level, format, ...) \
    LOG_FORMAT_AT(CALL_SITE, kLogModule, level, format, __VA_ARGS__)
#define LOG_TEXT(level, text) LOG_TEXT_AT(CALL_SITE, kLogModule, level, text)

#endif
