// What the platform gives the library in these test programs, without records that would need
// memory: messages are formatted and dropped, commands are not run, but "sync" by its system call
// where `flushes`.
#pragma once

#include <atomic>

namespace platform {

inline std::atomic<bool> sleepsTakeTime{false};
inline std::atomic<bool> flushes{false};
inline std::atomic<unsigned> errors{0};         ///< messages of level 1000
inline std::atomic<unsigned> strangeErrors{0};  ///< those with an SQLite code other than busy

}  // namespace platform
