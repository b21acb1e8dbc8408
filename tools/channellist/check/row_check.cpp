// Rules that a query can tell. Each query gives a row's name, what is wrong with it, and what a
// viewer sees of it.
#include <channellist-access/db_access.h>

#include "check/finding.h"
#include "database/list_naming.h"
#include "database/query.h"

namespace tool {
namespace {

struct Rule {
    char const* name;
    char const* sql;
};

// clang-format off
constexpr Rule kRules[] = {
    {"fav-lists",
     "SELECT 'FavoriteList', count(*) || ' lists are FAV lists, not four'"
     ", 'no list can be edited: every edit is refused'"
     " FROM FavoriteList WHERE Creator LIKE 'User.tvFAV%' HAVING count(*) <> 4"},

    {"list-uuid",
     "SELECT 'FavoriteList ' || Pid, 'the list ' || quote(Name) || ' has no uuid'"
     ", 'the list opens empty, and cannot be edited'"
     " FROM FavoriteList WHERE ifnull(Uuid, '') = ''"},

    {"list-uuid",
     "SELECT 'FavoriteList ' || group_concat(Pid, ', '), 'the lists share the uuid ' || quote(Uuid)"
     ", 'all of them show the services of the first, and edits change the last'"
     " FROM FavoriteList WHERE Uuid <> '' GROUP BY Uuid HAVING count(*) > 1"},

    {"update-tag",
     "SELECT 'FavoriteList ' || Pid, 'UpdateTag is ' || quote(UpdateTag) || ', not 0 to 65535'"
     ", 'an edit of ' || ifnull(Name, Uuid) || ' may not show until the set is switched off and on'"
     " FROM FavoriteList"
     " WHERE typeof(UpdateTag) <> 'integer' OR UpdateTag NOT BETWEEN 0 AND 65535"},

    {"dangling-item",
     "SELECT 'FavoriteItem ' || Id, 'names service ' || quote(i.ServiceId) || ', which does not exist'"
     ", ifnull(l.Name, 'a list') || ' lacks number ' || ifnull(ChannelNum, 'NULL')"
     " || CASE WHEN i.ServiceId IS NULL THEN '; edits of a FAV list pass the entry over' ELSE '' END"
     " FROM FavoriteItem i LEFT JOIN Service s ON s.Pid = i.ServiceId"
     " LEFT JOIN FavoriteList l ON l.Pid = i.FavoriteId"
     " WHERE s.Pid IS NULL ORDER BY Id"},

    {"dangling-item",
     "SELECT 'FavoriteItem ' || Id, 'belongs to list ' || quote(FavoriteId) || ', which does not exist'"
     ", 'no list shows the entry'"
     " FROM FavoriteItem LEFT JOIN FavoriteList l ON l.Pid = FavoriteId"
     " WHERE l.Pid IS NULL ORDER BY Id"},

    {"dangling-item",
     "SELECT 'FavoriteItem ' || Id"
     ", 'comes from list ' || quote(OriginalFavoriteId) || ', which does not exist'"
     ", 'the entry is shown without a network'"
     " FROM FavoriteItem LEFT JOIN FavoriteList l ON l.Pid = OriginalFavoriteId"
     " WHERE l.Pid IS NULL ORDER BY Id"},

    {"service-without-delivery",
     "SELECT 'Service ' || Pid, quote(Name) || ' has no row in AnalogService or DvbService'"
     ", 'no list shows the service; ' || count(*) || ' of them hold it'"
     " FROM FavoriteItem i JOIN Service s ON s.Pid = i.ServiceId"
     " WHERE Pid NOT IN (SELECT ServiceId FROM AnalogService WHERE ServiceId IS NOT NULL)"
     " AND Pid NOT IN (SELECT ServiceId FROM DvbService WHERE ServiceId IS NOT NULL)"
     " GROUP BY Pid"},

    {"channel-number",
     "SELECT 'FavoriteItem ' || Id, 'ChannelNum is ' || quote(ChannelNum) || ', no number'"
     ", 'the entry stands in the wrong place of its list, without a number'"
     " FROM FavoriteItem WHERE typeof(ChannelNum) <> 'integer' ORDER BY Id"},

    {"duplicate-number",
     "SELECT 'FavoriteItem ' || group_concat(i.Id, ', ')"
     ", 'share number ' || ChannelNum || ' of ' || ifnull(l.Name, l.Uuid)"
     ", 'the number keys reach one of them only, and which one is not certain'"
     " FROM FavoriteItem i JOIN FavoriteList l ON l.Pid = i.FavoriteId"
     " JOIN Service s ON s.Pid = i.ServiceId"
     " WHERE isDeleted = 0 AND typeof(ChannelNum) = 'integer'"
     " GROUP BY FavoriteId, ChannelNum HAVING count(*) > 1"},

    {"repeated-service",
     "SELECT 'FavoriteItem ' || group_concat(i.Id, ', ')"
     ", 'name service ' || i.ServiceId || ' again in ' || ifnull(l.Name, l.Uuid)"
     ", 'the service is shown more than once; an edit gives all of them one number'"
     " FROM FavoriteItem i JOIN FavoriteList l ON l.Pid = i.FavoriteId"
     " JOIN Service s ON s.Pid = i.ServiceId"
     " GROUP BY FavoriteId, i.ServiceId HAVING count(*) > 1"},
};

// For one FAV list: %1 its Pid, %2 the tag column, %3 its name.
constexpr Rule kTagRules[] = {
    {"fav-tag",
     "SELECT 'Service ' || Pid, quote(Name) || ' has %2 ' || quote(%2) || ', but is not in %3'"
     ", 'the service is marked as a favourite that %3 does not show'"
     " FROM Service WHERE %2 <> 0"
     " AND Pid NOT IN (SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = %1"
     " AND ServiceId IS NOT NULL)"},

    {"fav-tag",
     "SELECT 'Service ' || Pid, quote(Name) || ' has %2 ' || quote(%2) || ', but is in %3'"
     ", '%3 shows the service, but it is not marked as a favourite'"
     " FROM Service WHERE ifnull(%2, 0) = 0"
     " AND Pid IN (SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = %1)"},
};
// clang-format on

void run(Rule const& rule, std::string const& sql, Findings& findings) {
    examine(
        rule.name, findings,
        [&] {
            Query rows(db, sql);
            while (rows.next())
                findings.push_back({rule.name, rows.text(0), rows.text(1), rows.text(2)});
        });
}

void replaceAll(std::string& text, std::string const& what, std::string const& by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), by);
        at += by.size();
    }
}

std::string quoted(std::string text) {
    replaceAll(text, "'", "''");
    return text;
}

void checkFavList(List const& list, Findings& findings) {
    std::string const digit = std::to_string(list.favIndex);
    std::string const tag = list.favIndex == 1 ? "FavTag" : "FavTag" + digit;
    if (displayName(list) != "FAV" + digit) {
        findings.push_back({"fav-order", "FavoriteList " + std::to_string(list.pid),
                            displayName(list) + " is the FAV list in place " + digit,
                            "edits of " + displayName(list) + " mark their services as FAV" +
                                digit + ", and keep its OTT numbers free"});
    }
    for (Rule const& rule : kTagRules) {
        std::string sql = rule.sql;
        replaceAll(sql, "%1", std::to_string(list.pid));
        replaceAll(sql, "%2", tag);
        replaceAll(sql, "%3", quoted(displayName(list)));
        run(rule, sql, findings);
    }
}

}  // namespace

void checkRows(Findings& findings) {
    for (Rule const& rule : kRules)
        run(rule, rule.sql, findings);
    examine("fav-tag", findings, [&] {
        for (List const& list : allLists())
            if (list.favIndex >= 1 && list.favIndex <= 4)
                checkFavList(list, findings);
    });
}

}  // namespace tool
