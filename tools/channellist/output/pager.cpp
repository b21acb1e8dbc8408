#include "output/pager.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "output/terminal.h"

namespace tool {
namespace {

constexpr int kNotFound = 127;      // the shell's word for a command that there is not
constexpr int kKeepsHeaders = 594;  // the version of less from which on it does
constexpr char kLess[] = "less";

// The pager reads the keys of the terminal, of which Ctrl-C is one, and may end before it has read
// all.
class SignalsOfThePager {
  public:
    SignalsOfThePager() {
        struct sigaction ignoring = {};
        ignoring.sa_handler = SIG_IGN;
        for (std::size_t i = 0; i < kSignals.size(); ++i)
            sigaction(kSignals[i], &ignoring, &before_[i]);
    }
    ~SignalsOfThePager() { restore(); }
    SignalsOfThePager(SignalsOfThePager const&) = delete;
    SignalsOfThePager& operator=(SignalsOfThePager const&) = delete;

    void restore() {
        for (std::size_t i = 0; i < kSignals.size(); ++i)
            sigaction(kSignals[i], &before_[i], nullptr);
    }

  private:
    static constexpr std::array<int, 3> kSignals = {SIGINT, SIGQUIT, SIGPIPE};
    std::array<struct sigaction, 3> before_ = {};
};

// "less 608 (GNU regular expressions)"
int versionOfLess() {
    int version = 0;
    struct Close {
        void operator()(FILE* stream) const { pclose(stream); }
    };
    std::unique_ptr<FILE, Close> const told(popen("less --version 2>/dev/null", "r"));
    std::array<char, 64> line = {};
    if (told && std::fgets(line.data(), static_cast<int>(line.size()), told.get()) != nullptr)
        version = std::atoi(std::find(line.begin(), line.end(), ' '));
    return version;
}

// The command for the shell; "" for none.
std::string pagerCommand(int header) {
    char const* const told = std::getenv("PAGER");
    std::string command = told == nullptr ? kLess : told;
    if (command == "cat")
        return "";
    if (command == kLess && versionOfLess() >= kKeepsHeaders)
        command += " --header=" + std::to_string(header);
    return command;
}

void writeAll(int descriptor, std::string const& text) {
    for (std::size_t done = 0; done < text.size();) {
        ssize_t const size = write(descriptor, text.data() + done, text.size() - done);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return;  // it has ended: who reads has seen enough
        done += static_cast<std::size_t>(size);
    }
}

// False where it could not be started.
bool showBy(std::string const& command, std::string const& text) {
    std::array<int, 2> pipe = {};
    if (::pipe(pipe.data()) != 0)
        return false;
    std::cout.flush();
    SignalsOfThePager signals;
    pid_t const child = fork();
    if (child == 0) {
        signals.restore();
        dup2(pipe[0], STDIN_FILENO);
        close(pipe[0]);
        close(pipe[1]);
        setenv("LESS", "FRX", 0);  // end where all fits, show colours, leave the text in sight
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(kNotFound);
    }
    close(pipe[0]);
    if (child > 0)
        writeAll(pipe[1], text);
    close(pipe[1]);
    int status = 0;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    return child > 0 && !(WIFEXITED(status) && WEXITSTATUS(status) == kNotFound);
}

}  // namespace

void page(std::string const& text, int header) {
    auto const lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    std::string const command =
        pageHeight() != 0 && lines >= pageHeight() ? pagerCommand(header) : "";
    if (command.empty() || !showBy(command, text))
        std::cout << text;
}

}  // namespace tool
