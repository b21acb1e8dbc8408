// What a person, or a script, is told of the findings.
#pragma once

#include <string>

#include "check/finding.h"
#include "tool.h"

namespace tool {

// "edits", "seen", "tuning", "slow", "odd".
std::string wordFor(Severity severity);
// Throws Failure for any other word.
Severity severityOf(std::string const& word);

// The worst first. What follows from another finding is counted under it, and of a rule ten are
// shown: with `all` everything is.
void printFindings(Findings findings, bool all);
// "3 findings."
std::string countOf(Findings const& findings);
void printFindingsJson(Findings const& findings);

}  // namespace tool
