#include "output/replacement.h"

#include <iostream>

#include "output/written.h"
#include "text/display_text.h"
#include "tool.h"

namespace tool {

void printReplacement(std::string const& file, std::string const& database,
                      std::string const& changes, bool dryRun) {
    if (!changes.empty())
        std::cout << displayLines(changes) << "\n";
    if (dryRun)
        std::cout << "Dry run: nothing is written.\n";
    else
        printWritten("Written, and flushed to the disk: " + displayText(database) + " holds what " +
                     displayText(file) + " holds.");
}

}  // namespace tool
