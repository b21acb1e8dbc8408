// channellist driver UUID UUID
#include <channellist-access/db_access.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "database/session.h"
#include "failure.h"
#include "text/display_text.h"

namespace tool {
namespace {

// What the library prints passes through a file of its own: names may hold what a terminal obeys.
class CleanedOutput {
  public:
    CleanedOutput() : printed_(std::tmpfile(), std::fclose), terminal_(dup(STDOUT_FILENO)) {
        if (printed_ == nullptr || terminal_ < 0 || dup2(fileno(printed_.get()), STDOUT_FILENO) < 0)
            throw Failure(std::string("cannot make a temporary file: ") + std::strerror(errno));
    }
    ~CleanedOutput() { restore(); }
    CleanedOutput(CleanedOutput const&) = delete;
    CleanedOutput& operator=(CleanedOutput const&) = delete;

    void print() {
        restore();
        std::rewind(printed_.get());
        std::string text;
        char part[4096];
        for (std::size_t size; (size = std::fread(part, 1, sizeof part, printed_.get())) > 0;)
            text.append(part, size);
        std::cout << displayLines(text);
    }

  private:
    void restore() {
        std::fflush(stdout);
        if (terminal_ >= 0) {
            dup2(terminal_, STDOUT_FILENO);
            close(terminal_);
        }
        terminal_ = -1;
    }

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> printed_;
    int terminal_;
};

int run(std::string const& database, std::vector<std::string> uuids) {
    Session const session(database);
    std::string name = "channellist";
    std::vector<char*> arguments = {name.data()};
    for (std::string& uuid : uuids)
        arguments.push_back(uuid.data());
    int const count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    CleanedOutput output;
    int const code = dbaccess::main0(count, arguments.data());
    output.print();
    return code == 0 ? kSuccess : kFailure;
}

}  // namespace

void addDriverCommand(CommandLine& line) {
    auto uuids = std::make_shared<std::vector<std::string>>();
    line.add("driver", "The library's own driver: prints the lists, reads the services of two")
        .arguments("UUID", *uuids, 0, 2, "uuids of up to two lists")
        .footer(
            "Examples:\n"
            "  channellist driver fav1 all\n"
            "  channellist driver fav1 all --trace all")
        .action([uuids](std::string const& database) { return run(database, *uuids); });
}

}  // namespace tool
