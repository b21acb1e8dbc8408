// Lists and their entries.
#include "check/rule.h"
#include "database/list_naming.h"

namespace channel_lists {
namespace {

// clang-format off
constexpr Rule kRules[] = {
    {"fav-lists", Severity::Edits, Mend::Decision,
     "SELECT 'FavoriteList', count(*) || ' lists are FAV lists, not four'"
     ", 'no list can be edited: every edit is refused'"
     ", 'make lists with the creators User.tvFAV1 to User.tvFAV4, in this order, and no other'"
     " FROM FavoriteList WHERE Creator LIKE 'User.tvFAV%' HAVING count(*) <> 4"},

    {"fav-order", Severity::Edits, Mend::Decision,
     "SELECT 'FavoriteList ' || group_concat(Pid, ', ')"
     ", 'the keys and creators of the FAV lists do not ascend together'"
     ", 'edits take one FAV list for another, and mark its services as those of the other'"
     ", 'make the four lists anew, in the order FAV1 to FAV4'"
     " FROM (SELECT Pid FROM FavoriteList l WHERE Creator LIKE 'User.tvFAV%' AND EXISTS"
     " (SELECT 1 FROM FavoriteList m WHERE m.Creator LIKE 'User.tvFAV%' AND m.Pid < l.Pid"
     " AND m.Creator > l.Creator COLLATE NOCASE) ORDER BY Pid) HAVING count(*) > 0"},

    {"all-list", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteList' || ifnull(' ' || group_concat(Pid, ', '), ''), count(*) || ' lists are the All list, not one'"
     ", 'the list of all services is missing, or not certain'"
     ", 'keep one list with the creator tamun.sl2.servicelist$all'"
     " FROM FavoriteList WHERE Creator = 'tamun.sl2.servicelist$all' HAVING count(*) <> 1"},

    {"creator", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteList ' || Pid, 'Creator is NULL'"
     ", 'the set''s overview of lists lacks ' || ifnull(Name, 'it')"
     ", 'give it its creator, or remove the list and its entries'"
     " FROM FavoriteList WHERE Creator IS NULL"},

    {"list-uuid", Severity::Edits, Mend::Decision,
     "SELECT 'FavoriteList ' || Pid, 'the list ' || quote(Name) || ' has no uuid'"
     ", 'the list opens empty, and cannot be edited'"
     ", 'which uuid clients know the list by: UPDATE FavoriteList SET Uuid = ... WHERE Pid = ' || Pid"
     " FROM FavoriteList WHERE ifnull(Uuid, '') = ''"},

    {"list-uuid", Severity::Edits, Mend::Decision,
     "SELECT 'FavoriteList ' || group_concat(Pid, ', '), 'the lists share the uuid ' || quote(Uuid)"
     ", 'all of them show the services of the first, and edits change the last'"
     ", 'UPDATE FavoriteList SET Uuid = ... WHERE Pid = ' || max(Pid)"
     " FROM FavoriteList WHERE Uuid <> '' GROUP BY Uuid HAVING count(*) > 1"},

    {"key", Severity::Edits, Mend::Decision,
     "SELECT Kind || ' ' || Key, 'its key is not 1 to 2147483647'"
     ", 'requests and edits take it for another row, or for none'"
     ", 'give the row another key, also where others name it'"
     " FROM (SELECT 'Service' AS Kind, Pid AS Key FROM Service UNION ALL SELECT 'FavoriteList', Pid"
     " FROM FavoriteList UNION ALL SELECT 'FavoriteItem', Id FROM FavoriteItem)"
     " WHERE typeof(Key) <> 'integer' OR Key NOT BETWEEN 1 AND 2147483647"},

    {"list-name", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteList ' || Pid, 'Name ' || why_foul_text(Name)"
     ", 'the list is shown without a name, or with signs that are none'"
     ", 'UPDATE FavoriteList SET Name = ... WHERE Pid = ' || Pid"
     " FROM FavoriteList WHERE why_foul_text(Name) IS NOT NULL"},

    {"same-name", Severity::Odd, Mend::Decision,
     "SELECT 'FavoriteList ' || group_concat(Pid, ', '), 'the lists are called ' || quote(Name)"
     ", 'a viewer cannot tell them apart'"
     ", 'UPDATE FavoriteList SET Name = ... WHERE Pid = ' || max(Pid)"
     " FROM FavoriteList WHERE Name <> '' GROUP BY Name, substr(Creator, 1, 8) HAVING count(*) > 1"},

    {"update-tag", Severity::Seen, Mend::Statement,
     "SELECT 'FavoriteList ' || Pid, 'UpdateTag is ' || quote(UpdateTag) || ', not 0 to 65535'"
     ", 'an edit of ' || ifnull(Name, Uuid) || ' may not show until the set is switched off and on'"
     ", 'UPDATE FavoriteList SET UpdateTag = 0 WHERE Pid = ' || Pid"
     " FROM FavoriteList"
     " WHERE typeof(UpdateTag) <> 'integer' OR UpdateTag NOT BETWEEN 0 AND 65535"},

    {"network", Severity::Odd, Mend::Decision,
     "SELECT 'FavoriteList ' || Pid, 'NetworkId is NULL'"
     ", 'the services of ' || ifnull(Name, Uuid) || ' are shown without a network'"
     ", 'which network: UPDATE FavoriteList SET NetworkId = ... WHERE Pid = ' || Pid"
     " FROM FavoriteList WHERE NetworkId IS NULL"},

    {"highest-number", Severity::Odd, Mend::Statement,
     "SELECT 'FavoriteList ' || l.Pid, 'MaxChannelNumber is ' || quote(MaxChannelNumber)"
     " || ', and the highest number ' || n.Highest"
     ", 'a client that trusts it puts a new entry on a number that is taken, or leaves a gap'"
     ", 'UPDATE FavoriteList SET MaxChannelNumber = ' || n.Highest || ' WHERE Pid = ' || l.Pid"
     " FROM FavoriteList l JOIN (SELECT FavoriteId, max(ChannelNum) AS Highest FROM FavoriteItem"
     " WHERE isDeleted = 0 AND typeof(ChannelNum) = 'integer' GROUP BY FavoriteId) n"
     " ON n.FavoriteId = l.Pid WHERE Creator LIKE 'User.tvFAV%' AND MaxChannelNumber <> 0"
     " AND MaxChannelNumber <> Highest"},

    {"highest-number", Severity::Odd, Mend::Statement,
     "SELECT 'FavoriteList ' || Pid, 'MaxChannelNumber is ' || quote(MaxChannelNumber) || ', no number'"
     ", 'a client that trusts it finds no place for a new entry'"
     ", 'UPDATE FavoriteList SET MaxChannelNumber = 0 WHERE Pid = ' || Pid"
     " FROM FavoriteList WHERE typeof(MaxChannelNumber) <> 'integer' AND MaxChannelNumber NOT NULL"
     " OR MaxChannelNumber NOT BETWEEN 0 AND 2147483647"},

    {"dangling-item", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteItem ' || group_concat(Id, ', '), 'names service ' || quote(i.ServiceId)"
     " || ', which does not exist'"
     ", ifnull(l.Name, 'a list') || ' lacks number ' || ifnull(min(ChannelNum), 'NULL')"
     " || CASE WHEN i.ServiceId IS NULL THEN '; edits of a FAV list pass the entry over' ELSE '' END"
     ", 'whether a scan brings the service back, or: DELETE FROM FavoriteItem WHERE ServiceId IS '"
     " || quote(i.ServiceId)"
     " FROM FavoriteItem i LEFT JOIN Service s ON s.Pid = i.ServiceId"
     " LEFT JOIN FavoriteList l ON l.Pid = i.FavoriteId"
     " WHERE s.Pid IS NULL GROUP BY i.FavoriteId, i.ServiceId ORDER BY min(Id)"},

    {"dangling-item", Severity::Odd, Mend::Decision,
     "SELECT 'FavoriteItem ' || group_concat(Id, ', '), 'belongs to list ' || quote(FavoriteId)"
     " || ', which does not exist'"
     ", 'no list shows the entry'"
     ", 'whether the list comes back, or: DELETE FROM FavoriteItem WHERE FavoriteId IS '"
     " || quote(FavoriteId)"
     " FROM FavoriteItem LEFT JOIN FavoriteList l ON l.Pid = FavoriteId"
     " WHERE l.Pid IS NULL GROUP BY FavoriteId"},

    {"dangling-item", Severity::Odd, Mend::Statement,
     "SELECT 'FavoriteItem ' || group_concat(Id, ', ')"
     ", 'comes from list ' || quote(OriginalFavoriteId) || ', which does not exist'"
     ", 'the entry is shown without a network'"
     ", 'UPDATE FavoriteItem SET OriginalFavoriteId = FavoriteId WHERE OriginalFavoriteId IS '"
     " || quote(OriginalFavoriteId)"
     " FROM FavoriteItem LEFT JOIN FavoriteList l ON l.Pid = OriginalFavoriteId"
     " WHERE l.Pid IS NULL AND FavoriteId IN (SELECT Pid FROM FavoriteList)"
     " GROUP BY OriginalFavoriteId"},

    {"channel-number", Severity::Edits, Mend::Decision,
     "SELECT 'FavoriteItem ' || Id, 'ChannelNum is ' || quote(ChannelNum) || ', no number of 32 bits'"
     ", 'the entry stands in the wrong place of its list, without a number, and edits of the list are"
     " refused'"
     ", 'UPDATE FavoriteItem SET ChannelNum = ... WHERE Id = ' || Id"
     " FROM FavoriteItem WHERE CASE WHEN typeof(ChannelNum) = 'integer' THEN ChannelNum NOT BETWEEN"
     " -2147483648 AND 2147483647 ELSE ChannelNum IS NULL OR typeof(ChannelNum) = 'real' OR"
     " CAST(ChannelNum AS TEXT) <> CAST(CAST(CAST(ChannelNum AS TEXT) AS INTEGER) AS TEXT) END"
     " ORDER BY Id"},

    {"channel-number", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteItem ' || Id, 'ChannelNum is ' || ChannelNum || ', and numbers begin with 1'"
     ", 'no number keys reach the entry'"
     ", 'UPDATE FavoriteItem SET ChannelNum = ... WHERE Id = ' || Id"
     " FROM FavoriteItem WHERE typeof(ChannelNum) = 'integer' AND isDeleted = 0"
     " AND ChannelNum BETWEEN -2147483648 AND 0 ORDER BY Id"},

    {"duplicate-number", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteItem ' || group_concat(i.Id, ', ')"
     ", 'share number ' || ChannelNum || ' of ' || ifnull(l.Name, l.Uuid)"
     ", 'the number keys reach one of them only, and which one is not certain'"
     ", 'channellist edit ' || quote(l.Uuid) || ' move id:' || max(i.ServiceId) || ' to NUMBER'"
     " FROM FavoriteItem i JOIN FavoriteList l ON l.Pid = i.FavoriteId"
     " JOIN Service s ON s.Pid = i.ServiceId"
     " WHERE isDeleted = 0 AND typeof(ChannelNum) = 'integer'"
     " GROUP BY FavoriteId, ChannelNum HAVING count(*) > 1"},

    {"repeated-service", Severity::Seen, Mend::Decision,
     "SELECT 'FavoriteItem ' || group_concat(i.Id, ', ')"
     ", 'name service ' || i.ServiceId || ' again in ' || ifnull(l.Name, l.Uuid)"
     ", 'the service is shown more than once; an edit gives all of them one number'"
     ", 'which of the entries stays: DELETE FROM FavoriteItem WHERE Id = ...'"
     " FROM FavoriteItem i JOIN FavoriteList l ON l.Pid = i.FavoriteId"
     " JOIN Service s ON s.Pid = i.ServiceId"
     " GROUP BY FavoriteId, i.ServiceId HAVING count(*) > 1"},

    {"hidden-in-all", Severity::Odd, Mend::Decision,
     "SELECT 'FavoriteItem ' || group_concat(f.Id, ', '), 'the service is hidden in the All list, and"
     " shown in ' || group_concat(ifnull(l.Name, l.Uuid), ', ')"
     ", 'service ' || f.ServiceId || ' is gone from the list of all services, but not from the"
     " favourites'"
     ", 'whether it is to be shown: restore it in the All list, or hide it in the other'"
     " FROM FavoriteItem f JOIN FavoriteList l ON l.Pid = f.FavoriteId AND l.Creator LIKE"
     " 'User.tvFAV%' WHERE f.isDeleted = 0 AND f.ServiceId IN (SELECT a.ServiceId FROM FavoriteList b"
     " JOIN FavoriteItem a ON a.FavoriteId = b.Pid WHERE b.Creator = 'tamun.sl2.servicelist$all'"
     " AND a.isDeleted <> 0) GROUP BY f.ServiceId"},

    {"hidden-list", Severity::Odd, Mend::Decision,
     "SELECT 'FavoriteList ' || l.Pid, 'all ' || count(*) || ' entries of ' || ifnull(l.Name, l.Uuid)"
     " || ' are hidden'"
     ", 'the list looks empty'"
     ", 'whether they are to be shown: channellist edit ' || quote(l.Uuid) || ' restore ...'"
     " FROM FavoriteList l JOIN FavoriteItem i ON i.FavoriteId = l.Pid WHERE Creator LIKE"
     " 'User.tvFAV%' GROUP BY l.Pid HAVING min(isDeleted <> 0) = 1 AND count(*) > 1"},
};

// For a column of keys: %1 the table, %2 the column.
constexpr Rule kTypeRule =
    {"wrong-type", Severity::Seen, Mend::Statement,
     "SELECT '%1', count(*) || ' rows hold %2 as ' || group_concat(DISTINCT typeof(%2)) || ', not as"
     " an integer'"
     ", 'the rows are lost to every list and edit, though their values look right'"
     ", 'UPDATE %1 SET %2 = CAST(CAST(%2 AS TEXT) AS INTEGER) WHERE typeof(%2) IN (''blob'', ''text'')"
     " AND CAST(%2 AS TEXT) = CAST(CAST(CAST(%2 AS TEXT) AS INTEGER) AS TEXT)'"
     " FROM %1 WHERE typeof(%2) IN ('blob', 'text')"
     " AND CAST(%2 AS TEXT) = CAST(CAST(CAST(%2 AS TEXT) AS INTEGER) AS TEXT)"
     " HAVING count(*) > 0"};

constexpr char const* kKeyColumns[][2] = {
    {"FavoriteItem", "ServiceId"}, {"FavoriteItem", "FavoriteId"}, {"FavoriteItem", "OriginalFavoriteId"},
    {"FavoriteItem", "ChannelNum"}, {"FavoriteItem", "isDeleted"}, {"DvbService", "ServiceId"},
    {"DvbService", "TunerId"}, {"Lcn", "ServiceId"}, {"Lcn", "FavoriteId"},
};

// For one FAV list: %1 its Pid, %2 the tag column, %3 its name.
constexpr Rule kTagRules[] = {
    {"fav-tag", Severity::Seen, Mend::Statement,
     "SELECT 'Service ' || Pid, 'has %2 ' || quote(%2) || ', but is not in %3'"
     ", ifnull(Name, 'the service') || ' is marked as a favourite that %3 does not show'"
     ", 'UPDATE Service SET %2 = 0 WHERE Pid = ' || Pid"
     " FROM Service WHERE %2 <> 0"
     " AND Pid NOT IN (SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = %1"
     " AND ServiceId IS NOT NULL)"},

    {"fav-tag", Severity::Seen, Mend::Statement,
     "SELECT 'Service ' || Pid, 'has %2 ' || quote(%2) || ', but is in %3'"
     ", '%3 shows ' || ifnull(Name, 'the service') || ', which is not marked as a favourite'"
     ", 'UPDATE Service SET %2 = 1 WHERE Pid = ' || Pid"
     " FROM Service WHERE ifnull(%2, 0) = 0"
     " AND Pid IN (SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = %1)"},

    {"fav-tag", Severity::Odd, Mend::Statement,
     "SELECT 'Service ' || Pid, 'has %2 ' || quote(%2) || ', not 0 or 1'"
     ", 'a client that looks for 1 does not mark ' || ifnull(Name, 'it') || ' as a favourite'"
     ", 'UPDATE Service SET %2 = 1 WHERE Pid = ' || Pid"
     " FROM Service WHERE %2 NOT IN (0, 1)"
     " AND Pid IN (SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = %1)"},
};
// clang-format on

void replaceAll(std::string& text, std::string const& what, std::string const& by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), by);
        at += by.size();
    }
}

void checkFavList(List const& list, Findings& findings) {
    std::string const digit = std::to_string(list.favIndex);
    std::string const tag = list.favIndex == 1 ? "FavTag" : "FavTag" + digit;
    if (displayName(list) != "FAV" + digit) {
        findings.push_back({"fav-order", Severity::Edits,
                            "FavoriteList " + std::to_string(list.pid),
                            displayName(list) + " is the FAV list in place " + digit,
                            "edits of " + displayName(list) + " mark their services as FAV" +
                                digit + ", and keep its OTT numbers free",
                            decision("make the four lists anew, in the order FAV1 to FAV4")});
    }
    for (Rule const& rule : kTagRules) {
        std::string sql = rule.sql;
        replaceAll(sql, "%1", std::to_string(list.pid));
        replaceAll(sql, "%2", tag);
        replaceAll(sql, "%3", doubled(displayName(list), '\''));
        apply(rule, sql, findings);
    }
}

}  // namespace

void checkLists(Findings& findings) {
    for (auto const& column : kKeyColumns) {
        std::string sql = kTypeRule.sql;
        replaceAll(sql, "%1", column[0]);
        replaceAll(sql, "%2", column[1]);
        apply(kTypeRule, sql, findings);
    }
    applyAll(kRules, findings);
    examine("fav-tag", findings, [&] {
        for (List const& list : allLists())
            if (list.favIndex >= 1 && list.favIndex <= 4)
                checkFavList(list, findings);
    });
}

}  // namespace channel_lists
