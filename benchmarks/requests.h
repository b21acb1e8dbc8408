// The library's requests, as the benchmarks make them of a benchmark database.
#ifndef BENCHMARKS_REQUESTS_H
#define BENCHMARKS_REQUESTS_H

#include <string>
#include <vector>

namespace benchmarks {

// Each throws std::runtime_error unless the request succeeds.

// Reads the All list of that many services.
void readServiceList(int services);

void readFolderList();

// Two edits of one list that undo each other, made by turns.
class AlternatingEdit {
  public:
    AlternatingEdit(std::vector<std::string> there, std::vector<std::string> back)
        : edits_{std::move(there), std::move(back)}, next_(edits_[0]) {}

    // Copies the arguments of the next edit, which a host has at hand.
    void prepare();

    void run();

  private:
    std::vector<std::string> edits_[2];
    std::vector<std::string> next_;
    int turn_ = 0;
};

// Replaces a fifth of the FAV1 list of that many services, and puts it back.
AlternatingEdit favListEdit(int favorites);

// Moves every number of the All list, deletes one in ten of the services in its second half, which
// no FAV list holds, and renumbers the four FAV lists; and back with another tenth.
AlternatingEdit allListEdit(int services);

void lookUpAstra();

void lookUpBissKey(int service);

}  // namespace benchmarks

#endif
