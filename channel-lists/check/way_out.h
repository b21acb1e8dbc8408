// Ways out are tried before they are shown.
#pragma once

#include <functional>
#include <string>

#include "check/finding.h"

namespace channel_lists {

// Takes back the statements of findings that mend nothing, or harm something: on a copy of `db`,
// the finding has to be gone, `look` has to find nothing that it did not find before, and no row
// may be lost but those that the finding names. What a finding's cause mends is left to it.
void tryWaysOut(Findings& findings, std::function<Findings()> const& look);

// The statements that are certain, each once: together they pass the same trial.
std::vector<std::string> certainStatements(Findings const& findings,
                                           std::function<Findings()> const& look);

}  // namespace channel_lists
