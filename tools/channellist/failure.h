// How a command ends.
#pragma once

#include <stdexcept>
#include <string>

namespace tool {

enum ExitCode {
    kSuccess = 0,
    kFailure = 1,  // something failed, or `check` found something
    kUsage = 2,    // the command line asks for what no database can give
};

// Ends the command with one sentence on standard error.
class Failure : public std::runtime_error {
  public:
    explicit Failure(std::string const& sentence, ExitCode code = kFailure)
        : std::runtime_error(sentence), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

}  // namespace tool
