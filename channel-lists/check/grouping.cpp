#include "check/grouping.h"

#include <algorithm>
#include <unordered_map>

#include "text/display_text.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

// What several findings share, while they are gathered.
struct Group {
    Finding first;
    RowName row;
    std::vector<std::string> statements;  // that differ
    bool endInKeys = true;                // "... = 7", with the key of a row of one
    std::size_t others = 0;               // of another sentence for the viewer
    bool decidesMore = false;
};

// "UPDATE ... WHERE Pid = " of "UPDATE ... WHERE Pid = 7", the key being 7; "" for any other.
std::string beforeKey(std::string const& sql, std::string const& key) {
    std::string const end = " = " + key;
    bool const ends =
        sql.size() > end.size() && sql.compare(sql.size() - end.size(), end.size(), end) == 0;
    return ends ? sql.substr(0, sql.size() - key.size()) : "";
}

Group groupOf(Finding const& finding) {
    Group group{finding, rowName(finding.row), {finding.mend.sql}};
    group.endInKeys =
        group.row.keys.size() == 1 && !beforeKey(finding.mend.sql, group.row.keys[0]).empty();
    return group;
}

void add(Finding const& finding, Group& group) {
    Group const other = groupOf(finding);
    group.endInKeys = group.endInKeys && other.endInKeys &&
                      beforeKey(finding.mend.sql, other.row.keys[0]) ==
                          beforeKey(group.first.mend.sql, group.row.keys[0]);
    group.row.keys.insert(group.row.keys.end(), other.row.keys.begin(), other.row.keys.end());
    if (finding.mend.sql != group.statements.back())
        group.statements.push_back(finding.mend.sql);
    if (finding.mend.decision != group.first.mend.decision)
        group.decidesMore = true;
    if (finding.viewer != group.first.viewer)
        ++group.others;
}

// A statement for each thousand rows: one for a whole table may be longer than SQLite takes.
std::string statementsOf(Group const& group) {
    constexpr std::size_t kMostKeys = 1000;
    std::string sql;
    if (!group.endInKeys || group.statements.size() == 1) {
        for (std::string const& statement : group.statements)
            sql += (sql.empty() ? "" : "; ") + statement;
        return sql;
    }
    std::vector<std::string> const& keys = group.row.keys;
    std::string const before = beforeKey(group.first.mend.sql, keys[0]);
    for (std::size_t begin = 0; begin < keys.size(); begin += kMostKeys) {
        auto const first = keys.begin() + static_cast<std::ptrdiff_t>(begin);
        std::size_t const count = std::min(kMostKeys, keys.size() - begin);
        sql += (sql.empty() ? "" : "; ") + before.substr(0, before.size() - 2) + "IN (" +
               joined({first, first + static_cast<std::ptrdiff_t>(count)}) + ")";
    }
    return sql;
}

Finding findingOf(Group const& group) {
    Finding finding = group.first;
    finding.row = group.row.table + joined(group.row.keys);
    finding.mend.sql = statementsOf(group);
    if (group.decidesMore)
        finding.mend.decision += "; and so on";
    if (group.others != 0)
        finding.viewer += "; so it is with " + std::to_string(group.others) +
                          (group.others == 1 ? " other" : " others");
    return finding;
}

}  // namespace

RowName rowName(std::string const& row) {
    std::size_t const begin = row.substr(0, row.find(", ")).rfind(' ');
    if (begin == std::string::npos)
        return {row, {}};
    RowName name{row.substr(0, begin + 1), {}};
    for (std::size_t at = begin + 1; at <= row.size();) {
        std::size_t const end = std::min(row.find(", ", at), row.size());
        name.keys.push_back(row.substr(at, end - at));
        if (!wholeNumber(name.keys.back()))
            return {row, {}};
        at = end + 2;
    }
    return name;
}

Findings grouped(Findings const& findings) {
    std::vector<Group> groups;
    std::unordered_map<std::string, std::size_t> known;
    for (Finding const& finding : findings) {
        RowName const row = rowName(finding.row);
        bool const isAlone = row.keys.empty();
        auto const [at, isNew] =
            known.emplace(finding.rule + '\n' + row.table + '\n' + finding.what +
                              (finding.mend.sql.empty() ? "" : "\n"),
                          groups.size());
        if (isNew || isAlone)
            groups.push_back(groupOf(finding));
        else
            add(finding, groups[at->second]);
    }
    Findings all;
    all.reserve(groups.size());
    for (Group const& group : groups)
        all.push_back(findingOf(group));
    return all;
}

}  // namespace channel_lists
