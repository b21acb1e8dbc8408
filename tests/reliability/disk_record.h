// Records what a program does to the files of a directory, in the order in which it does it.
//
// A test records what it does itself:
//
//     disk::Recorder recorder(directory, log);  // until its end
//     edit();
//     disk::report(log, "1 edit");              // what was told by then
//
// Any other program is recorded through the shared library, built from the same source (target
// "disk-record"), its children as well:
//
//     LD_PRELOAD=.../libdisk-record.so DISK_DIRECTORY=DIR DISK_LOG=FILE program ...
//
// What it writes to its standard output, past any stream, is recorded as a report; so is what the
// test says by disk::report() of a process that has ended. disk::operationsOf(log) reads the
// record, and Disk of power_cut.h rebuilds the directory as a power cut leaves it.
//
// Seen are open, write, pwrite, ftruncate, rename, linkat of a file
// without a name, unlink, fsync, fdatasync and sync, by the
// absolute paths of files in the directory itself. What goes through C's or C++'s streams or a
// memory map is not seen, so SQLite's "-shm" files are left out: after a power cut there is none.
// While a program is recorded its flushes reach no disk.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace disk {

enum class Kind : std::uint32_t {
    Create,    // a file that was not there
    Write,     // `data` at `offset`
    Truncate,  // to `offset` bytes, or lengthen
    Rename,    // to the name in `data`
    Unlink,
    Flush,           // a file
    FlushDirectory,  // names, not contents
    FlushAll,        // every file and name
    Report,          // `data`: what somebody was told
};

struct Operation {
    Kind kind;
    std::uint64_t offset = 0;
    std::string file;  // its name in the directory
    std::string data;
};

class Recorder {
  public:
    Recorder(std::string const& directory, std::string const& log);
    ~Recorder();
    Recorder(Recorder const&) = delete;
    Recorder& operator=(Recorder const&) = delete;
};

void report(std::string const& log, std::string const& text);
std::vector<Operation> operationsOf(std::string const& log);

}  // namespace disk
