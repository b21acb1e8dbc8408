// What is wrong with a database that somebody else owns.
#pragma once

#include <string>
#include <vector>

#include "database/time_limit.h"
#include "failure.h"

namespace channel_lists {

// What suffers most, the worst first.
enum class Severity { Edits, Seen, Tuning, Slow, Odd };

// How a finding is mended.
struct WayOut {
    // Statements, shown only once they were tried on a copy: see way_out.h.
    std::string sql;
    // What a person has to decide, or to do step by step; "" where the statements are certain.
    std::string decision;

    bool isCertain() const { return !sql.empty() && decision.empty(); }
    // For a reader.
    std::string text() const;
};

inline WayOut statements(std::string const& sql) { return {sql, ""}; }
inline WayOut decision(std::string const& what) { return {"", what}; }

struct Finding {
    std::string rule;  // its name, "dangling-item"
    Severity severity;
    std::string row;     // the table and keys, "FavoriteItem 812, 813"
    std::string what;    // what is wrong with the row
    std::string viewer;  // what a viewer sees of it
    WayOut mend;
    std::string cause = {};  // the rule whose findings explain it; "" without one
};

using Findings = std::vector<Finding>;

// With each `mark` written twice, as within the quotes of SQL.
std::string doubled(std::string const& text, char mark);

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

// Damaged pages and indexes that disagree with their table.
void checkPages(Findings& findings);
// Missing tables, columns, keys and indexes.
void checkSchema(Findings& findings);
// The views that the library makes.
void checkViews(Findings& findings);
// Lists and their entries.
void checkLists(Findings& findings);
// Services, their transponders and channel numbers.
void checkServices(Findings& findings);
// Frequencies and symbol rates that no delivery system has.
void checkTuning(Findings& findings);
// The numbers of OTT channels, in `db_zentova`.
void checkOtt(Findings& findings);
// Values that the library cannot convert: it takes 0 for a service's and leaves a list out.
// Services that cannot be tuned.
void checkConversion(Findings& findings);
// Edits, each list's on a copy in memory of its own.
void checkEdits(Findings& findings);

}  // namespace channel_lists
