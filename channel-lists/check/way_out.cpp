#include "check/way_out.h"

#include <channellist-access/db_access.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>

#include "check/grouping.h"
#include "database/frozen_database.h"
#include "database/query.h"

namespace channel_lists {
namespace {

constexpr int kMostTrials = 24;  // each is a check

using Look = std::function<Findings()>;
using Tried = std::vector<Finding*>;
using Counts = std::map<std::string, std::int64_t>;  // of rows, by their tables

// Its rows, each by the rule: a mended one may leave its group.
std::vector<std::string> namesOf(Finding const& finding) {
    RowName const row = rowName(finding.row);
    if (row.keys.empty())
        return {finding.rule + " of " + finding.row};
    std::vector<std::string> names;
    names.reserve(row.keys.size());
    for (std::string const& key : row.keys)
        names.push_back(finding.rule + " of " + row.table + key);
    return names;
}

Counts countRows() {
    Counts counts;
    Query names(db, "SELECT name FROM sqlite_master WHERE type = 'table'");
    while (names.next())
        counts[names.text(0)] = queryNumber(db, "SELECT count(*) FROM \"" + names.text(0) + "\"");
    return counts;
}

// The rows that "FavoriteItem 812, 813" names.
void addNamed(std::string const& row, Counts& named) {
    named[row.substr(0, row.find(' '))] += static_cast<std::int64_t>(rowName(row).keys.size());
}

std::string whatIsLost(Counts const& before, Tried const& tried) {
    Counts named, after = countRows();
    for (Finding const* finding : tried)
        addNamed(finding->row, named);
    for (auto const& [table, rows] : before) {
        std::int64_t const lost = rows - (after.count(table) == 0 ? 0 : after.at(table));
        if (lost > named[table])
            return "rows of " + table + " that it does not name go with it";
        if (lost > 0 && lost * 2 > rows && rows > 2)
            return "most rows of " + table + " go with it";
    }
    return "";
}

std::string whatIsWrong(Findings const& before, Findings const& after, Tried const& tried) {
    std::unordered_set<std::string> known, left;
    for (Finding const& finding : before)
        for (std::string const& name : namesOf(finding))
            known.insert(name);
    for (Finding const& finding : after) {
        for (std::string const& name : namesOf(finding)) {
            left.insert(name + finding.what);
            if (known.count(name) == 0)
                return "then there is " + name + ": " + finding.what;
        }
    }
    bool const isLeft = std::any_of(tried.begin(), tried.end(), [&](Finding const* finding) {
        std::vector<std::string> const names = namesOf(*finding);
        return std::any_of(names.begin(), names.end(), [&](std::string const& name) {
            return left.count(name + finding->what) != 0;
        });
    });
    return isLeft ? "the finding stays" : "";
}

// Each statement once: findings may share theirs.
std::vector<std::string> statementsOf(Tried const& tried) {
    std::vector<std::string> statements;
    std::set<std::string> known;
    for (Finding const* finding : tried)
        if (known.insert(finding->mend.sql).second)
            statements.push_back(finding->mend.sql);
    return statements;
}

// Why the statements must not be run; "" where they mend the findings and nothing else happens.
std::string whyNot(Findings const& findings, Tried const& tried, Look const& look) {
    FrozenDatabase const copy;
    try {
        Counts const before = countRows();
        for (std::string const& sql : statementsOf(tried))
            if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
                return std::string("SQLite refuses it: ") + sqlite3_errmsg(db);
        std::string const lost = whatIsLost(before, tried);
        return lost.empty() ? whatIsWrong(findings, look(), tried) : lost;
    } catch (Failure const& failure) {
        return failure.what();
    }
}

void refuse(Finding& finding, std::string const& why) {
    finding.mend =
        decision("a person has to decide; \"" + finding.mend.sql + "\" is no way out: " + why);
}

// All together first, which mostly is enough, and what does not go together by halves.
void tryTogether(Findings const& findings, Tried const& tried, Look const& look, int& trials) {
    bool const isTried = ++trials <= kMostTrials;
    std::string const why =
        isTried ? whyNot(findings, tried, look) : "it was not tried, after so many others";
    if (why.empty())
        return;
    if (isTried && tried.size() > 1) {
        auto const half = tried.begin() + static_cast<std::ptrdiff_t>(tried.size() / 2);
        tryTogether(findings, {tried.begin(), half}, look, trials);
        tryTogether(findings, {half, tried.end()}, look, trials);
        return;
    }
    for (Finding* finding : tried)
        refuse(*finding, why);
}

}  // namespace

std::string WayOut::text() const {
    if (sql.empty())
        return decision;
    return decision.empty() ? sql : sql + " (a person decides: " + decision + ")";
}

void tryWaysOut(Findings& findings, Look const& look) {
    Tried tried;
    for (Finding& finding : findings)
        if (!finding.cause.empty())
            finding.mend = decision("mend " + finding.cause + " first, and check again");
        else if (!finding.mend.sql.empty())
            tried.push_back(&finding);
    std::stable_sort(tried.begin(), tried.end(),
                     [](Finding const* a, Finding const* b) { return a->rule < b->rule; });
    int trials = 0;
    if (!tried.empty())
        tryTogether(findings, tried, look, trials);
}

std::vector<std::string> certainStatements(Findings const& findings, Look const& look) {
    Findings copies = findings;
    Tried certain;
    for (Finding& finding : copies)
        if (finding.mend.isCertain())
            certain.push_back(&finding);
    if (certain.empty())
        return {};
    std::string const why = whyNot(findings, certain, look);
    if (!why.empty())
        throw Failure("the ways out do not go together, and nothing is written: " + why);
    return statementsOf(certain);
}

}  // namespace channel_lists
