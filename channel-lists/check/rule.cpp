#include "check/rule.h"

#include <channel-database/utf8.h>
#include <channellist-access/db_access.h>

#include <algorithm>

#include "database/query.h"

namespace channel_lists {
namespace {

// "FavoriteItem 1, 2, 3, 4, 5 and 7 more": a row's name may hold as many keys as a table.
std::string withFewKeys(std::string const& row) {
    constexpr int kMostKeys = 5;
    auto end = std::string::npos;
    std::size_t at = 0;
    int keys = 1;
    for (at = row.find(", "); at != std::string::npos; at = row.find(", ", at + 1))
        if (++keys == kMostKeys + 1)
            end = at;
    return end == std::string::npos
               ? row
               : row.substr(0, end) + " and " + std::to_string(keys - kMostKeys) + " more";
}

// Why a text is none that a viewer can read; null when it is one.
void whyFoulText(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    sqlite3_value* const value = values[0];
    auto const* const bytes = static_cast<char const*>(sqlite3_value_blob(value));
    std::size_t const size = static_cast<std::size_t>(sqlite3_value_bytes(value));
    constexpr std::size_t kLongest = 4096;
    char const* reason = nullptr;
    if (sqlite3_value_type(value) == SQLITE_NULL)
        reason = "is NULL";
    else if (size == 0)
        reason = "is empty";
    else if (size > kLongest)
        reason = "is longer than 4096 bytes";
    else if (std::find(bytes, bytes + size, '\0') != bytes + size)
        reason = "holds a NUL";
    else if (!channel_database::isUtf8(std::string_view(bytes, size)))
        reason = "is no UTF-8";
    else if (std::any_of(bytes, bytes + size,
                         [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }))
        reason = "holds control bytes";
    sqlite3_result_text(context, reason, -1, SQLITE_STATIC);
}

}  // namespace

void addUnread(std::string const& rule, std::string const& why, Findings& findings) {
    while (std::optional<std::string> const work = TimeLimit::newlyEndless()) {
        findings.push_back({"endless", Severity::Edits, work->substr(work->find(' ') + 1),
                            TimeLimit::sentenceOf(*work),
                            "the set hangs with every request that does the same",
                            "drop the view or trigger that has no end"});
    }
    findings.push_back({"unread", Severity::Seen, "rule " + rule,
                        TimeLimit::isReached() ? TimeLimit::sentence() : why,
                        "whatever the rule looks for may be there too",
                        "mend the other findings first"});
}

void apply(Rule const& rule, std::string const& sql, Findings& findings) {
    examine(
        rule.name, findings,
        [&] {
            sqlite3_create_function(db, "why_foul_text", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                    nullptr, whyFoulText, nullptr, nullptr);
            Query rows(db, sql);
            while (rows.next())
                findings.push_back({rule.name, rule.severity, withFewKeys(rows.text(0)),
                                    rows.text(1), rows.text(2), rows.text(3)});
        });
}

}  // namespace channel_lists
