// The commands: each adds itself, with its options, help and examples, to the command line.
#pragma once

#include "command_line/command_line.h"

namespace tool {

constexpr char kRawHelp[] =
    "print the rows as the library gives them, fields between tabs, control characters as \\x1b";

// The choice between a table, JSON and the library's rows.
struct Format {
    bool json = false;
    bool raw = false;
};

void addFoldersCommand(CommandLine& line);
void addServicesCommand(CommandLine& line);
void addAttributesCommand(CommandLine& line);
void addEditCommand(CommandLine& line);
void addAnchorCommand(CommandLine& line);
void addScrambleCommand(CommandLine& line);
void addBissCommand(CommandLine& line);
void addListCommand(CommandLine& line);
void addOttCommand(CommandLine& line);
void addCheckCommand(CommandLine& line);
void addDiffCommand(CommandLine& line);
void addFindCommand(CommandLine& line);
void addDriverCommand(CommandLine& line);
void addImportCommand(CommandLine& line);
void addExportCommand(CommandLine& line);
void addBackupCommand(CommandLine& line);
void addRestoreCommand(CommandLine& line);
void addUndoCommand(CommandLine& line);
void addWatchCommand(CommandLine& line);
void addPageCommand(CommandLine& line);

}  // namespace tool
