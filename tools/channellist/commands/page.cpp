// channellist page: starts the program that serves the page, which is a package of its own.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <vector>

#include "commands/commands.h"
#include "failure.h"

namespace tool {
namespace {

constexpr char kProgram[] = "channellist-page";

struct Options {
    std::string port, keep;
    bool readOnly = false;
    bool noBrowser = false;
};

// Beside this program, where both are installed, or in its own folder of the build.
std::vector<std::string> places() {
    std::error_code failed;
    auto const own = std::filesystem::read_symlink("/proc/self/exe", failed).parent_path();
    return {(own / kProgram).string(), (own.parent_path() / kProgram / kProgram).string()};
}

int run(std::string const& database, Options const& options) {
    std::vector<std::string> words = {kProgram, "--db", database};
    for (auto const& [name, value] : {std::pair{"--port", options.port}, {"--keep", options.keep}})
        if (!value.empty())
            words.insert(words.end(), {name, value});
    if (options.readOnly)
        words.emplace_back("--read-only");
    if (options.noBrowser)
        words.emplace_back("--no-browser");
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::cout.flush();
    for (std::string const& place : places())
        execv(place.c_str(), arguments.data());
    execvp(kProgram, arguments.data());
    if (errno != ENOENT)
        throw Failure(std::string(kProgram) + " cannot be started: " + std::strerror(errno));
    throw Failure(std::string(kProgram) +
                  " is not installed; it is a package of its own: apt install " + kProgram);
}

}  // namespace

void addPageCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("page", "Serves a page to sort channels with, to this machine alone")
        .option("--port", options->port, "the port to listen on (8017, else another)")
        .option("--keep", options->keep, "minutes without a page until it ends (15), 0: never")
        .flag("--read-only", options->readOnly, "let nothing be written")
        .flag("--no-browser", options->noBrowser, "open no browser")
        .footer(
            "Prints the address of the page, and opens it in the browser of a desktop. The "
            "address\n"
            "holds a key: whoever has it may edit the lists, until the program ends. It belongs "
            "to\n"
            "the package channellist-page.\n"
            "Examples:\n"
            "  channellist page\n"
            "  channellist page --db copy.db --read-only")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
