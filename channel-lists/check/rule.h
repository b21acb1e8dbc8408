// Rules that a query can tell.
#pragma once

#include "check/finding.h"

namespace channel_lists {

// What the fourth column of a rule holds.
enum class Mend { Statement, Decision };

struct Rule {
    char const* name;
    Severity severity;
    Mend mend;
    // Four columns a row: the row's name, what is wrong with it, what a viewer sees of it, and how
    // it is mended.
    char const* sql;
};

void apply(Rule const& rule, std::string const& sql, Findings& findings);

template <std::size_t Count>
void applyAll(Rule const (&rules)[Count], Findings& findings) {
    for (Rule const& rule : rules)
        apply(rule, rule.sql, findings);
}

}  // namespace channel_lists
