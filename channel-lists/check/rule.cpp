#include "check/rule.h"

#include <channel-database/utf8.h>
#include <channellist-access/db_access.h>

#include <utf8proc.h>

#include <algorithm>
#include <string_view>

#include "database/query.h"

namespace channel_lists {
namespace {

// Letters that no set shows: of the second set of controls, and those that turn the direction of
// all that follows.
bool isUnseen(utf8proc_int32_t letter) {
    return (letter >= 0x80 && letter < 0xA0) || (letter >= 0x202A && letter <= 0x202E) ||
           (letter >= 0x2066 && letter <= 0x2069);
}

bool isBlank(utf8proc_int32_t letter) {
    return utf8proc_category(letter) == UTF8PROC_CATEGORY_ZS || letter == 0x200B;
}

template <class Is>
bool anyLetter(std::string_view text, Is is) {
    utf8proc_int32_t letter = 0;
    for (std::size_t at = 0; at < text.size();) {
        auto const length =
            utf8proc_iterate(reinterpret_cast<utf8proc_uint8_t const*>(text.data()) + at,
                             static_cast<utf8proc_ssize_t>(text.size() - at), &letter);
        if (length <= 0)
            return false;
        if (is(letter))
            return true;
        at += static_cast<std::size_t>(length);
    }
    return false;
}

// Null for a text that a viewer can read.
char const* whyFoul(std::string_view text) {
    constexpr std::size_t kLongest = 4096;
    if (text.empty())
        return "is empty";
    if (text.size() > kLongest)
        return "is longer than 4096 bytes";
    if (text.find('\0') != std::string_view::npos)
        return "holds a NUL";
    if (!channel_database::isUtf8(text))
        return "is no UTF-8";
    if (std::any_of(text.begin(), text.end(),
                    [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }))
        return "holds control bytes";
    if (anyLetter(text, isUnseen))
        return "holds controls, or letters that turn the direction of a text";
    if (!anyLetter(text, [](utf8proc_int32_t letter) { return !isBlank(letter); }))
        return "is blank";
    return nullptr;
}

void whyFoulText(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    sqlite3_value* const value = values[0];
    char const* reason = "is NULL";
    if (sqlite3_value_type(value) != SQLITE_NULL) {
        auto const* const text = reinterpret_cast<char const*>(sqlite3_value_text(value));
        std::size_t const size = static_cast<std::size_t>(sqlite3_value_bytes(value));
        reason = whyFoul({text == nullptr ? "" : text, text == nullptr ? 0 : size});
    }
    sqlite3_result_text(context, reason, -1, SQLITE_STATIC);
}

}  // namespace

std::string doubled(std::string const& text, char mark) {
    std::string all;
    for (char const c : text)
        all += c == mark ? std::string(2, c) : std::string(1, c);
    return all;
}

void addUnread(std::string const& rule, std::string const& why, Findings& findings) {
    while (std::optional<std::string> const work = TimeLimit::newlyEndless()) {
        findings.push_back({"endless", Severity::Edits, work->substr(work->find(' ') + 1),
                            TimeLimit::sentenceOf(*work),
                            "the set hangs with every request that does the same",
                            decision("drop the view or trigger that has no end")});
    }
    findings.push_back({"unread", Severity::Seen, "rule " + rule,
                        TimeLimit::isReached() ? TimeLimit::sentence() : why,
                        "whatever the rule looks for may be there too",
                        decision("what keeps SQLite from reading it, as it says")});
}

void apply(Rule const& rule, std::string const& sql, Findings& findings) {
    examine(
        rule.name, findings,
        [&] {
            sqlite3_create_function(db, "why_foul_text", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                    nullptr, whyFoulText, nullptr, nullptr);
            Query rows(db, sql);
            while (rows.next())
                findings.push_back({rule.name, rule.severity, rows.text(0), rows.text(1),
                                    rows.text(2),
                                    rule.mend == Mend::Statement ? statements(rows.text(3))
                                                                 : decision(rows.text(3))});
        });
}

}  // namespace channel_lists
