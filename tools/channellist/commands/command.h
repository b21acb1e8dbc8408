// The commands: each adds itself, with its options, help and examples, to the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "database/session.h"
#include "failure.h"

namespace tool {

struct CommandLine {
    std::string database = kSetDatabase;
    std::string trace;
    // What the chosen command does; it returns the exit code and may throw Failure.
    std::function<int()> run;
};

// The choice between a table, JSON and the library's rows.
struct Format {
    bool json = false;
    bool raw = false;
};

void addJsonOption(CLI::App& command, bool& json);
void addFormatOptions(CLI::App& command, Format& format);

void addFoldersCommand(CLI::App& app, CommandLine& line);
void addServicesCommand(CLI::App& app, CommandLine& line);
void addAttributesCommand(CLI::App& app, CommandLine& line);
void addEditCommand(CLI::App& app, CommandLine& line);
void addAnchorCommand(CLI::App& app, CommandLine& line);
void addScrambleCommand(CLI::App& app, CommandLine& line);
void addBissCommand(CLI::App& app, CommandLine& line);
void addOttCommand(CLI::App& app, CommandLine& line);
void addCheckCommand(CLI::App& app, CommandLine& line);
void addDriverCommand(CLI::App& app, CommandLine& line);
void addExportCommand(CLI::App& app, CommandLine& line);
void addImportCommand(CLI::App& app, CommandLine& line);

}  // namespace tool
