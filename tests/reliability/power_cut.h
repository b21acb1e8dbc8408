// A directory as a power cut leaves it, rebuilt from what was done to it.
#pragma once

#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "disk_record.h"

namespace disk {

using Files = std::map<std::string, std::string>;  // contents by name

/// Knows what has reached the disk for certain, and what may have.
///
/// A file's flush brings its contents there, a directory's flush its names. Of all else a cut keeps
/// a part: of writes and truncations any of them, in any order, a write also by its sectors of 512
/// bytes; of a name what it led to at any moment since. Where a file grew and nothing arrived there
/// are zeros or garbage.
class Disk {
  public:
    explicit Disk(Files const& files);

    void run(Operation const& operation);
    /// What is there after a power cut now.
    Files afterCut(std::mt19937_64& random) const;

  private:
    struct Content {
        std::string certain;
        std::vector<Operation> pending;
    };
    struct Name {
        std::vector<int> contents;  // which it led to, kNone: none; the first for certain
    };
    static constexpr int kNone = -1;

    int current(std::string const& name) const;
    void lead(std::string const& name, int content);
    void flush(Content& content);
    void flushNames();

    std::vector<Content> contents_;
    std::map<std::string, Name> names_;
};

Files filesIn(std::string const& directory);
void putFiles(std::string const& directory, Files const& files);

struct Recording {
    Files const& before;
    std::vector<Operation> const& operations;
};

struct Outcome {
    unsigned cuts = 0, faults = 0;
    std::size_t disks = 0;   // different ones
    std::string firstFault;  // with the seed that it came from
};

/// Cuts the power so often at least, as often before every operation as before any other. `wrong`
/// says what is wrong with the files after a cut that came behind so many reports, "" for nothing;
/// it is asked once for each disk. Without flushes it has to find something.
Outcome cutEverywhere(Recording const& recording, unsigned cuts, bool withFlushes,
                      std::uint64_t seed,
                      std::function<std::string(Files const&, std::size_t reports)> const& wrong);

/// The seed in this variable of the environment, else a random one.
std::uint64_t seedOf(char const* variable);

/// The first operation changes `bytes` as if all of it arrived.
void apply(Operation const& operation, std::string& bytes);

}  // namespace disk
