#include "check/examination.h"

#include <channellist-access/db_access.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "check/grouping.h"
#include "check/way_out.h"
#include "database/content_digest.h"
#include "database/frozen_database.h"
#include "database/query.h"

namespace channel_lists {
namespace {

struct Consequence {
    char const* cause;
    char const* rule;
};

// A rule's findings that another rule's explain. The first row of a rule that fits counts.
constexpr Consequence kConsequences[] = {
    {"column-type", "wrong-type"},
    {"column-type", "channel-number"},
    {"column-type", "key"},
    {"column-type", "update-tag"},
    {"column-type", "ids"},
    {"column-type", "frequency"},
    {"column-type", "satellite"},
    {"column-type", "frontend"},
    {"column-type", "lcn"},
    {"column-type", "highest-number"},
    {"wrong-type", "channel-number"},
    {"wrong-type", "dangling-item"},
    {"wrong-type", "service-in-no-list"},
    {"wrong-type", "service-not-in-all"},
    {"wrong-type", "fav-tag"},
    {"wrong-type", "hidden-list"},
    {"wrong-type", "edit"},
    {"list-uuid", "edit"},
    {"stale-index", "edit"},
    {"stale-index", "unread"},
    {"no-service", "dangling-item"},
    {"no-service", "lcn"},
    {"fav-lists", "fav-order"},
    {"fav-lists", "dangling-item"},
    {"fav-lists", "fav-tag"},
    {"fav-order", "fav-tag"},
    {"endless", "unread"},
    {"endless", "edit"},
    {"key", "edit"},
    {"key", "fav-tag"},
    {"key", "dangling-item"},
    {"key", "service-in-no-list"},
    {"key", "service-not-in-all"},
    {"all-list", "dangling-item"},
    {"all-list", "service-not-in-all"},
    {"all-list", "service-in-no-list"},
    {"missing-table", "unread"},
    {"missing-table", "service-query"},
    {"missing-column", "unread"},
    {"missing-column", "service-query"},
    {"missing-table", "edit"},
    {"missing-column", "edit"},
    {"damage", "unread"},
    {"damage", "edit"},
    {"default", "edit"},
    {"view-for-table", "default"},
    {"view-for-table", "edit"},
    {"view-for-table", "unread"},
    {"view-for-table", "service-query"},
    {"service-query", "edit"},
};

void nameCauses(Findings& findings) {
    std::set<std::string> rules;
    for (Finding const& finding : findings)
        rules.insert(finding.rule);
    for (Finding& finding : findings) {
        auto const* const cause = std::find_if(
            std::begin(kConsequences), std::end(kConsequences), [&](Consequence const& each) {
                return finding.rule == each.rule && rules.count(each.cause) != 0;
            });
        if (cause != std::end(kConsequences))
            finding.cause = cause->cause;
    }
}

int compareBytes(void* /*unused*/, int one, void const* a, int other, void const* b) {
    int const order = std::memcmp(a, b, static_cast<std::size_t>(std::min(one, other)));
    return order != 0 ? order : one - other;
}

// An owner's own rules of comparison: any order does for a look. The library has none of them, so
// what it reads and writes is tried on copies without.
void makeCollation(void* /*unused*/, sqlite3* connection, int /*encoding*/, char const* name) {
    for (char const* own : {"BINARY", "NOCASE", "RTRIM"})
        if (sqlite3_stricmp(name, own) == 0)
            return;  // SQLite asks for its own in UTF-16, too, and makes them itself
    sqlite3_create_collation(connection, name, SQLITE_UTF8, nullptr, compareBytes);
}

Findings lookOnce() {
    Findings findings;
    {
        FrozenDatabase const copy;
        sqlite3_collation_needed(db, nullptr, makeCollation);
        for (auto const check :
             {checkPages, checkSchema, checkLists, checkServices, checkTuning, checkOtt})
            check(findings);
    }
    {
        FrozenDatabase const copy;
        for (auto const check : {checkViews, checkConversion})
            check(findings);
    }
    checkEdits(findings);
    findings = grouped(findings);
    nameCauses(findings);
    return findings;
}

}  // namespace

Findings examineDatabase() {
    FrozenDatabase const state;
    Findings findings = lookOnce();
    tryWaysOut(findings, lookOnce);
    return findings;
}

std::vector<std::string> certainStatements(Findings const& findings) {
    FrozenDatabase const state;
    return certainStatements(findings, lookOnce);
}

std::string mend(std::vector<std::string> const& statements) {
    auto const run = [](std::string const& sql) {
        if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            throw Failure("nothing is written: " + std::string(sqlite3_errmsg(db)));
    };
    run("BEGIN IMMEDIATE");
    try {
        for (std::string const& sql : statements)
            run(sql);
        std::string content = contentDigest(db);
        run("COMMIT");
        return content;
    } catch (Failure const&) {
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

}  // namespace channel_lists
