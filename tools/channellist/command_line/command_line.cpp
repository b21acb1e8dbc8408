#include "command_line/command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <utility>

#include "command_line/completion.h"
#include "database/session.h"
#include "failure.h"
#include "library_messages/library_messages.h"
#include "output/terminal.h"
#include "text/display_text.h"
#include "text/near_names.h"

namespace tool {
namespace {

constexpr std::size_t kPageWidth = 80;  // of help that is printed elsewhere

constexpr char kExitCodes[] =
    "Exit codes: 0 success, 1 failure or findings, 2 wrong usage.\n"
    "\"channellist help COMMAND\" shows a command's options and examples.";

bool isTraceWord(std::string const& word) {
    if (word == "*")
        return true;
    bool const hexadecimal = word.compare(0, 2, "0x") == 0 || word.compare(0, 2, "0X") == 0;
    std::string const digits = hexadecimal ? word.substr(2) : word;
    return !digits.empty() &&
           digits.find_first_not_of(hexadecimal ? "0123456789abcdefABCDEF" : "0123456789") ==
               std::string::npos;
}

// [MODULE:]LEVEL, several with commas; numbers are decimal or hexadecimal.
std::string checkTrace(std::string const& text) {
    std::istringstream items(text + ",");
    for (std::string item; std::getline(items, item, ',');) {
        auto const colon = item.find(':');
        std::string const level = colon == std::string::npos ? item : item.substr(colon + 1);
        if ((colon != std::string::npos && !isTraceWord(item.substr(0, colon))) ||
            (level != "all" && !isTraceWord(level)))
            return "'" + text + "' is not [MODULE:]LEVEL[,...]";
    }
    return "";
}

// What "--" does: words behind it are none of the options, whatever they begin with. CLI11 gives
// them to the wrong command when nothing is missing in front of it, so they go past it marked; and
// so does "[VOX]", which it would take apart as a list of words.
constexpr char kMark = '\1';

bool isBracketed(std::string const& word) {
    return word.size() > 1 && word.front() == '[' && word.back() == ']';
}

std::vector<std::string> markedWords(int argc, char** argv) {
    std::vector<std::string> words;
    bool isMarked = false;
    for (int i = 1; i < argc; ++i) {
        std::string const word = argv[i];
        if (!isMarked && word == "--")
            isMarked = true;
        else
            words.push_back((isMarked && word[0] == '-') || isBracketed(word) ? kMark + word
                                                                              : word);
    }
    std::reverse(words.begin(), words.end());  // as CLI11 wants them
    return words;
}

CLI::Validator withoutMark() {
    return {[](std::string& word) {
                if (!word.empty() && word[0] == kMark)
                    word.erase(0, 1);
                return std::string();
            },
            ""};
}

void removeMarks(CLI::App& app) {
    for (CLI::Option* option : app.get_options())
        if (option->get_items_expected_max() > 0)
            option->transform(withoutMark());
}

// A variable of a script that is not set.
CLI::Validator notEmpty() {
    return {[](std::string& word) {
                return word.empty() ? std::string("a value is needed, not ''") : std::string();
            },
            ""};
}

constexpr char kHelp[] = "help";

CommandWords wordsOf(CLI::App const& app, std::string const& name) {
    CommandWords command = {name, {}};
    for (CLI::Option const* option : app.get_options())
        for (std::string const& word : option->get_lnames())
            command.options.push_back({"--" + word, option->get_items_expected_max() > 0});
    return command;
}

std::vector<std::string> namesOf(CommandWords const& command) {
    std::vector<std::string> names;
    for (CommandWords::Option const& option : command.options)
        names.push_back(option.name);
    return names;
}

std::vector<std::string> commandNames(std::vector<CommandWords> const& all) {
    std::vector<std::string> names = {kHelp};
    for (CommandWords const& each : all)
        names.push_back(each.name);
    return names;
}

CommandWords::Option const* optionOf(CommandWords const& common, CommandWords const* command,
                                     std::string const& name) {
    for (CommandWords const* each : {command, &common})
        if (each != nullptr)
            for (CommandWords::Option const& option : each->options)
                if (option.name == name)
                    return &option;
    return nullptr;
}

// "help edit" is "edit --help", and "help" alone "--help"; options for all commands may stand in
// front.
void turnHelpAround(CommandWords const& common, std::vector<std::string>& reversed) {
    auto word = reversed.rbegin();
    while (word != reversed.rend() && word->compare(0, 2, "--") == 0) {
        CommandWords::Option const* const option = optionOf(common, nullptr, *word++);
        if (option != nullptr && option->takesValue && word != reversed.rend())
            ++word;
    }
    if (word == reversed.rend() || *word != kHelp)
        return;
    std::vector<std::string> help = {"--help"};
    if (++word != reversed.rend())
        help.push_back(*word);
    reversed = std::move(help);
}

}  // namespace

Command& Command::argument(std::string const& name, std::string& value, std::string const& help) {
    app_.add_option(name, value, help)->required();
    return *this;
}

Command& Command::optionalArgument(std::string const& name, std::string& value,
                                   std::string const& help) {
    app_.add_option(name, value, help);
    return *this;
}

Command& Command::arguments(std::string const& name, std::vector<std::string>& values, int least,
                            int most, std::string const& help) {
    app_.add_option(name, values, help)->expected(least, most)->required(least > 0);
    return *this;
}

Command& Command::option(std::string const& name, std::string& value, std::string const& help) {
    app_.add_option(name, value, help)->check(notEmpty());
    return *this;
}

Command& Command::flag(std::string const& names, bool& value, std::string const& help) {
    app_.add_flag(names, value, help);
    return *this;
}

Command& Command::json(bool& value) { return flag("--json", value, "print JSON, for scripts"); }

Command& Command::noUndo(bool& value) {
    return flag("--no-undo", value, "keep no copy that \"undo\" could bring back");
}

Command& Command::needs(std::string const& name, std::string const& other) {
    app_.get_option(name)->needs(app_.get_option(other));
    return *this;
}

Command& Command::excludes(std::string const& name, std::string const& other) {
    app_.get_option(name)->excludes(app_.get_option(other));
    return *this;
}

Command& Command::footer(std::string const& text) {
    app_.footer(unwrapped(text));
    return *this;
}

Command& Command::action(Action action) {
    app_.callback([this_action = &action_, action = std::move(action)] { *this_action = action; });
    return *this;
}

CommandLine::CommandLine()
    : app_(std::make_unique<CLI::App>("Looks into the channel database of a set.", "channellist")),
      database_(kSetDatabase) {
    app_->require_subcommand(1);
    app_->fallthrough();
    app_->set_help_flag("-h,--help", "print this help");
    app_->set_version_flag("--version", CHANNELLIST_VERSION, "print the version");
    app_->footer(kExitCodes);
    app_->add_option("--db", database_, "the channel database")
        ->type_name("FILE")
        ->take_last()
        ->capture_default_str();
    app_->add_option(
            "--trace", trace_,
            "write the library's errors, and its messages of this level, to standard error:"
            " 1, 3000, 4000, 5000 or all; MODULE:LEVEL for one module")
        ->type_name("LEVEL")
        ->take_last()
        ->check(CLI::Validator(checkTrace, ""));
    app_->add_option(
            "--color", color_,
            "auto (on a terminal, unless NO_COLOR is set or TERM is dumb), always or never")
        ->type_name("WHEN")
        ->take_last();
    app_->add_flag("--wide", wide_, "cut no table to the terminal's width");
    app_->add_flag("--no-pager", noPager_, "show no long table through $PAGER");
}

CommandLine::~CommandLine() = default;

Command CommandLine::add(std::string const& name, std::string const& help) {
    return Command(*app_->add_subcommand(name, help), action_);
}

// Those for all commands first.
std::vector<CommandWords> CommandLine::allWords() const {
    std::vector<CommandWords> commands = {wordsOf(*app_, "")};
    for (CLI::App const* command : app_->get_subcommands({}))
        commands.push_back(wordsOf(*command, command->get_name()));
    return commands;
}

void CommandLine::printCompletions(std::vector<std::string> const& words) const {
    for (std::string const& candidate : completions(allWords(), words))
        std::cout << displayText(candidate) << "\n";
}

std::string CommandLine::slipIn(std::vector<std::string> const& reversed) const {
    std::vector<CommandWords> const all = allWords();
    CommandWords const* command = nullptr;
    std::vector<std::string> options = namesOf(all[0]);
    bool isValue = false;
    for (auto word = reversed.rbegin(); word != reversed.rend(); ++word) {
        if (std::exchange(isValue, false) || word->empty() || (*word)[0] == kMark || *word == "-")
            continue;
        std::string const name = word->substr(0, word->find('='));
        if (word->compare(0, 2, "--") == 0) {
            CommandWords::Option const* const option = optionOf(all[0], command, name);
            if (option == nullptr)
                return "there is no option " + name +
                       (command == nullptr ? "" : " of " + command->name) +
                       didYouMean(name, options);
            isValue = option->takesValue && name == *word;
        } else if ((*word)[0] != '-' && command == nullptr) {
            auto const named = std::find_if(all.begin() + 1, all.end(),
                                            [&](auto const& each) { return each.name == *word; });
            if (named == all.end())
                return "there is no command '" + *word + "'" + didYouMean(*word, commandNames(all));
            command = &*named;
            std::vector<std::string> const own = namesOf(*command);
            options.insert(options.end(), own.begin(), own.end());
        }
    }
    return "";
}

std::optional<int> CommandLine::parse(int argc, char** argv) {
    if (argc > 1 && argv[1] == std::string(kCompleteCommand)) {
        printCompletions({argv + 2, argv + argc});
        return kSuccess;
    }
    std::vector<std::string> words = markedWords(argc, argv);
    turnHelpAround(wordsOf(*app_, ""), words);
    std::string const slip = slipIn(words);
    removeMarks(*app_);
    for (CLI::App* command : app_->get_subcommands({}))
        removeMarks(*command);
    try {
        if (!slip.empty())
            throw CLI::ParseError(slip, kUsage);
        app_->parse(std::move(words));
    } catch (CLI::Success const& asked) {  // help, the version
        std::ostringstream text;
        int const code = app_->exit(asked, text, text);
        std::size_t const width = lineWidth();
        std::cout << wrapped(text.str(), width != 0 ? width : kPageWidth);
        return code;
    } catch (CLI::ParseError const& error) {
        std::cerr << "channellist: " << displayLines(error.what()) << "; --help shows how\n";
        return kUsage;
    }
    return std::nullopt;
}

int CommandLine::run() const {
    setOutput(color_, wide_, noPager_);
    if (!trace_.empty())
        traceMessages(trace_);
    return action_(database_);
}

}  // namespace tool
