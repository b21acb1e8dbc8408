// SQLite's memory in the fast build of the fuzz targets.
#pragma once

namespace fuzz {

/// Serves SQLite's allocations, of one thread, from free lists by size that never shrink, and takes
/// its mutexes out. For a build without AddressSanitizer, which would see nothing of them. Call it
/// before the first connection.
void poolSqliteMemory();

}  // namespace fuzz
