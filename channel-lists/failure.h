// How a request ends that cannot be met.
#pragma once

#include <stdexcept>
#include <string>

namespace channel_lists {

enum ExitCode {
    kSuccess = 0,
    kFailure = 1,  // something failed, or `check` found something
    kUsage = 2,    // the command line asks for what no database can give
};

// Ends a request with one sentence for a person.
class Failure : public std::runtime_error {
  public:
    explicit Failure(std::string const& sentence, ExitCode code = kFailure)
        : std::runtime_error(sentence), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

}  // namespace channel_lists
