// SQLite's storage layer of these test programs: the real one, struck by `fault`.
#pragma once

#include <string>

namespace storage {

/// Registers the layer as SQLite's default. The path that the library opens leads to
/// `channelDatabase`. Busy waits inside SQLite take no time unless `realTime`.
void install(std::string const& channelDatabase, bool realTime);

/// A killed process loses nothing that it has written, so nothing has to reach the disk.
inline bool flushes = false;

}  // namespace storage
