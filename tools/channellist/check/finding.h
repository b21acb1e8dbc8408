// What is wrong with a database that somebody else owns.
#pragma once

#include <string>
#include <vector>

#include "failure.h"

namespace tool {

struct Finding {
    std::string rule;    // its name, "dangling-item"
    std::string row;     // the table and key, "FavoriteItem 812"
    std::string what;    // what is wrong with the row
    std::string viewer;  // what a viewer sees of it
};

using Findings = std::vector<Finding>;

// Lets `look` add findings of a rule; what keeps it from looking is a finding itself.
template <class Look>
void examine(std::string const& rule, Findings& findings, Look look) {
    try {
        look();
    } catch (Failure const& failure) {
        findings.push_back(
            {rule, "rule " + rule, failure.what(), "whatever the rule looks for may be there too"});
    }
}

// Each part looks at the open database `db` and adds what it finds.

// Damaged pages; missing tables, columns, keys and indexes; statements that SQLite refuses.
void checkSchema(Findings& findings);
// Rules that a query can tell: FAV lists, lists' own columns, dangling items, numbers, FavTags.
void checkRows(Findings& findings);
// Values that the library cannot convert: it takes 0 for a service's and leaves a list out.
// Services that cannot be tuned.
void checkConversion(Findings& findings);

}  // namespace tool
