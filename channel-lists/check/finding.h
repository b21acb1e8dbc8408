// What is wrong with a database that somebody else owns.
#pragma once

#include <string>
#include <vector>

#include "database/time_limit.h"
#include "failure.h"

namespace channel_lists {

// What suffers most, the worst first.
enum class Severity { Edits, Seen, Tuning, Slow, Odd };

struct Finding {
    std::string rule;  // its name, "dangling-item"
    Severity severity;
    std::string row;     // the table and key, "FavoriteItem 812"
    std::string what;    // what is wrong with the row
    std::string viewer;  // what a viewer sees of it
    std::string mend;    // the statement for the database's owner, or the tool's own command
};

using Findings = std::vector<Finding>;

// Adds what kept a rule from looking: why, and once for each of them the view or table that has no
// end.
void addUnread(std::string const& rule, std::string const& why, Findings& findings);

// Lets `look` add findings of a rule; what keeps it from looking is a finding itself.
template <class Look>
void examine(std::string const& rule, Findings& findings, Look look) {
    TimeLimit::restart(rule);
    try {
        look();
    } catch (Failure const& failure) {
        addUnread(rule, failure.what(), findings);
    }
}

// Each part looks at the open database `db` and adds what it finds.

// Damaged pages; missing tables, columns, keys and indexes; statements that SQLite refuses.
void checkSchema(Findings& findings);
// Lists and their entries.
void checkLists(Findings& findings);
// Services, their transponders and channel numbers.
void checkServices(Findings& findings);
// Values that the library cannot convert: it takes 0 for a service's and leaves a list out.
// Services that cannot be tuned.
void checkConversion(Findings& findings);
// Edits on a copy in memory, taken back and compared. `db` is the copy afterwards.
void checkEdits(Findings& findings);

}  // namespace channel_lists
