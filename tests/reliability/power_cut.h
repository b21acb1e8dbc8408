// A directory as a power cut leaves it, rebuilt from what was done to it.
#pragma once

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

/// The first operation changes `bytes` as if all of it arrived.
void apply(Operation const& operation, std::string& bytes);

}  // namespace disk
