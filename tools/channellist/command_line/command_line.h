// The command line: options for all commands, and the commands with their own.
//
// It keeps CLI11, which takes long to compile, in one source file.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command_line/completion.h"
#include "tool.h"

namespace CLI {
class App;
}

namespace tool {

// Of arguments; CLI11's own bound for "as many as there are".
constexpr int kAnyNumber = 1 << 29;

// What a command does with the database; it gives the exit code and may throw Failure.
using Action = std::function<int(std::string const& database)>;

// One command while it is described. The values that options are stored in live as long as the
// command line.
class Command {
  public:
    Command(CLI::App& app, Action& action) : app_(app), action_(action) {}

    Command& argument(std::string const& name, std::string& value, std::string const& help);
    Command& optionalArgument(std::string const& name, std::string& value, std::string const& help);
    // From `least` to `most` of them.
    Command& arguments(std::string const& name, std::vector<std::string>& values, int least,
                       int most, std::string const& help);
    Command& option(std::string const& name, std::string& value, std::string const& help);
    Command& flag(std::string const& names, bool& value, std::string const& help);
    // "--json", as every command that has it describes it.
    Command& json(bool& value);
    // "--no-undo", of the commands that write.
    Command& noUndo(bool& value);
    // `name` makes sense beside `other` only.
    Command& needs(std::string const& name, std::string const& other);
    Command& excludes(std::string const& name, std::string const& other);
    // What follows the options in the help.
    Command& footer(std::string const& text);
    Command& action(Action action);

  private:
    CLI::App& app_;
    Action& action_;
};

class CommandLine {
  public:
    CommandLine();
    ~CommandLine();
    CommandLine(CommandLine const&) = delete;
    CommandLine& operator=(CommandLine const&) = delete;

    Command add(std::string const& name, std::string const& help);

    // The exit code when nothing remains to do: help was printed, or the usage is wrong.
    std::optional<int> parse(int argc, char** argv);
    // Does what the chosen command does.
    int run() const;

  private:
    // All candidates of the line that is being typed, see completion.h.
    void printCompletions(std::vector<std::string> const& words) const;
    std::vector<CommandWords> allWords() const;
    // What is wrong with a command or option that is none, with the nearest one; "" for nothing.
    std::string slipIn(std::vector<std::string> const& reversed) const;

    std::unique_ptr<CLI::App> app_;
    std::string database_;
    std::string trace_;
    std::string color_ = "auto";
    bool wide_ = false;
    bool noPager_ = false;
    Action action_;
};

}  // namespace tool
