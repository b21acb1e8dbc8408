// channellist: looks into the channel database of a set, through the library.
#include <cstdio>
#include <iostream>
#include <new>

#include "commands/commands.h"
#include "database/time_limit.h"
#include "failure.h"
#include "output/terminal_listener.h"
#include "text/display_text.h"

namespace {

int runTool(int argc, char** argv) {
    using namespace tool;
    CommandLine line;
    for (auto const add :
         {addFoldersCommand,    addServicesCommand, addFindCommand,   addDiffCommand,
          addAttributesCommand, addEditCommand,     addListCommand,   addAnchorCommand,
          addScrambleCommand,   addBissCommand,     addOttCommand,    addCheckCommand,
          addDriverCommand,     addImportCommand,   addExportCommand, addBackupCommand,
          addRestoreCommand,    addUndoCommand,     addWatchCommand,  addPageCommand})
        add(line);
    std::optional<int> const done = line.parse(argc, argv);
    return done ? *done : line.run();
}

}  // namespace

int main(int argc, char** argv) {
    tool::TerminalListener const listener;
    int code;
    try {
        code = runTool(argc, argv);
        if (tool::TimeLimit::isReached())
            throw tool::Failure(tool::TimeLimit::sentence());
    } catch (tool::Failure const& failure) {
        std::cout.flush();
        std::cerr << "channellist: "
                  << (tool::TimeLimit::isReached() ? tool::TimeLimit::sentence()
                                                   : tool::displayLines(failure.what()))
                  << "\n";
        tool::explainByMessages();
        code = failure.code();
    } catch (std::bad_alloc const&) {
        std::cerr << "channellist: not enough memory\n";
        code = tool::kFailure;
    } catch (std::ios_base::failure const&) {
        std::cerr << "channellist: a file could not be read or written\n";
        code = tool::kFailure;
    } catch (std::exception const& error) {
        std::cout.flush();
        std::cerr << "channellist: " << tool::displayLines(error.what()) << "\n";
        tool::explainByMessages();
        code = tool::kFailure;
    }
    if (!std::cout.flush() || std::ferror(stdout) != 0) {
        std::cerr << "channellist: the output could not be written\n";
        return tool::kFailure;
    }
    return code;
}
