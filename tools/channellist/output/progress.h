// One line of progress that changes, on standard error: only on a terminal that knows escape
// sequences.
#pragma once

#include <string>

namespace tool {

void showProgress(std::string const& text);

// Wipes the line, if there is one.
void endProgress();

}  // namespace tool
