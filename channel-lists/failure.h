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
        : std::runtime_error(withoutNul(sentence)), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    // what() would end there, and a text that is quoted may hold some.
    static std::string withoutNul(std::string const& sentence) {
        std::string text;
        for (char const c : sentence)
            text += c == '\0' ? std::string("\\x00") : std::string(1, c);
        return text;
    }

    ExitCode code_;
};

}  // namespace channel_lists
