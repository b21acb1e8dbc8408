#include "output/progress.h"

#include <unistd.h>

#include <iostream>

#include "output/terminal.h"
#include "text/display_text.h"
#include "tool.h"

namespace tool {
namespace {

constexpr char kWipe[] = "\r\x1b[K";

bool isShown = false;

}  // namespace

void showProgress(std::string const& text) {
    if (isatty(STDERR_FILENO) == 0 || !knowsSequences())
        return;
    // Whole on one row, which alone is wiped; a row that is full may begin the next one.
    std::size_t const width = terminalWidth(STDERR_FILENO) - 1;
    std::cerr << kWipe << cutText(displayText(text), width) << std::flush;
    isShown = true;
}

void endProgress() {
    if (isShown)
        std::cerr << kWipe << std::flush;
    isShown = false;
}

}  // namespace tool
