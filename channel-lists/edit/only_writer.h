// Whether what lists hold behind a write is of that write alone.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace channel_lists {

// From the sight of the lists to the last look at them: nobody else wrote to them, and from the
// first commit on, nobody to anything in the file.
class OnlyWriter {
  public:
    // `states`: see storedState, of the lists by their uuids as they were seen.
    explicit OnlyWriter(std::map<std::string, std::string> states) : states_(std::move(states)) {}

    // Before a commit, in the read that it rests on.
    void look();
    // The version that a commit gave to the file.
    void hasCommitted(std::optional<unsigned int> version) { version_ = version; }
    // A commit on the file as it was by then.
    void hasCommittedUnseen();
    // `version`: of the file at the last look.
    bool isAlone(std::optional<unsigned int> version) const;

  private:
    std::map<std::string, std::string> states_;
    std::optional<unsigned int> version_;
    bool isAlone_ = true;
};

}  // namespace channel_lists
