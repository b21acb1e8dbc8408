// channellist: looks into the channel database of a set, through the library.
#include <cstdlib>
#include <iostream>
#include <regex>

#include "commands/command.h"

namespace tool {

void addJsonOption(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "print JSON, for scripts");
}

void addFormatOptions(CLI::App& command, Format& format) {
    addJsonOption(command, format.json);
    command.add_flag("--raw", format.raw, "print the rows as the library gives them");
}

namespace {

constexpr char kExitCodes[] =
    "Exit codes: 0 success, 1 failure or findings, 2 wrong usage.\n"
    "\"channellist COMMAND --help\" shows a command's options and examples.";

// One item a comma: [MODULE:]LEVEL, numbers decimal or hexadecimal.
std::string checkTrace(const std::string& text) {
    static const char* const item =
        "[ \t]*((0[xX][0-9a-fA-F]+|[0-9]+|\\*):)?(0[xX][0-9a-fA-F]+|[0-9]+|\\*|all)[ \t]*";
    const std::regex pattern(std::string("^") + item + "(," + item + ")*$");
    return std::regex_match(text, pattern) ? std::string()
                                           : "'" + text + "' is not [MODULE:]LEVEL[,...]";
}

void addCommands(CLI::App& app, CommandLine& line) {
    app.require_subcommand(1);
    app.fallthrough();
    app.set_help_flag("-h,--help", "print this help");
    app.set_version_flag("--version", CHANNELLIST_VERSION, "print the version");
    app.footer(kExitCodes);
    app.add_option("--db", line.database, "the channel database")
        ->type_name("FILE")
        ->take_last()
        ->capture_default_str();
    app.add_option("--trace", line.trace,
                   "write the library's own messages of this level to standard error:"
                   " 1, 3000, 4000, 5000 or all; MODULE:LEVEL for one module")
        ->type_name("LEVEL")
        ->take_last()
        ->check(CLI::Validator(checkTrace, ""));
    for (const auto add :
         {addFoldersCommand, addServicesCommand, addAttributesCommand, addEditCommand,
          addAnchorCommand, addScrambleCommand, addBissCommand, addOttCommand, addCheckCommand,
          addExportCommand, addDriverCommand, addImportCommand}) {
        add(app, line);
    }
}

int runTool(int argc, char** argv) {
    CLI::App app("Looks into the channel database of a set.", "channellist");
    CommandLine line;
    addCommands(app, line);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kSuccess : kUsage;
    }
    if (!line.trace.empty()) {
        setenv("ORV_DEBUG", line.trace.c_str(), 1);  // before the library asks for the first time
    }
    return line.run();
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
    int code;
    try {
        code = tool::runTool(argc, argv);
    } catch (const tool::Failure& failure) {
        std::cout.flush();
        std::cerr << "channellist: " << failure.what() << "\n";
        code = failure.code();
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "channellist: " << error.what() << "\n";
        code = tool::kFailure;
    }
    if (!std::cout.flush()) {
        std::cerr << "channellist: the output could not be written\n";
        return tool::kFailure;
    }
    return code;
}
