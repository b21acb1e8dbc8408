// channellist restore FILE
#include <memory>

#include "commands/commands.h"
#include "failure.h"
#include "output/replacement.h"
#include "undo/replacement.h"

namespace tool {
namespace {

struct Options {
    std::string file;
    bool dryRun = false;
    bool noUndo = false;
};

int run(std::string const& database, Options const& options) {
    std::string const changes =
        bringBack(options.file, database, {options.dryRun, options.noUndo ? "" : "restore"});
    printReplacement(options.file, database, changes, options.dryRun);
    return kSuccess;
}

}  // namespace

void addRestoreCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("restore", "Brings back the content of a backup")
        .argument("FILE", options->file, "a copy that \"backup\" made")
        .flag("-n,--dry-run", options->dryRun, "tell what would change, and write nothing")
        .noUndo(options->noUndo)
        .footer(
            "A copy that is damaged or no whole channel database is refused. The database keeps\n"
            "its file, owner and mode; its content changes as a whole or not at all. A database\n"
            "that another process writes to is waited for, up to ten seconds. Where no copy of it\n"
            "can be kept for \"undo\", nothing is written unless --no-undo is given.\n"
            "\nExamples:\n"
            "  channellist restore before-the-scan.db --dry-run\n"
            "  channellist restore before-the-scan.db")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
