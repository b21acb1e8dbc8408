// The directory that a benchmark program keeps its databases in.
#ifndef BENCHMARKS_SCRATCH_H
#define BENCHMARKS_SCRATCH_H

#include <filesystem>

namespace benchmarks {

// Makes the directory and lets HOME name it, with an OTT database inside; removes it at the end.
class Scratch {
  public:
    Scratch();
    ~Scratch();
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;

    // The directory of this program's one Scratch.
    static std::filesystem::path const& directory();
};

}  // namespace benchmarks

#endif
