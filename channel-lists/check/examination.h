// A whole check.
#pragma once

#include "check/finding.h"

namespace channel_lists {

// Of one state of the open database `db`, which stays as it is: causes are named, and every way out
// was tried.
Findings examineDatabase();

// What of `findings` can be mended with certainty: statements that together harm nothing.
std::vector<std::string> certainStatements(Findings const& findings);

// Runs them on the open database in one transaction, and returns the digest of what it holds then.
// Throws Failure; nothing is written then, as where a CommitGuard refuses.
std::string mend(std::vector<std::string> const& statements);

}  // namespace channel_lists
