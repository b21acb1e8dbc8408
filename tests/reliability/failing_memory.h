// The memory of a test program: operator new and SQLite's allocator, both struck by `fault` and
// counted. Linking this replaces operator new.
#pragma once

namespace memory {

/// Puts the allocator under SQLite. Before anything else is asked of SQLite.
void install();

/// Blocks that operator new or SQLite's allocator handed out and nobody has freed.
long liveBlocks();

}  // namespace memory
