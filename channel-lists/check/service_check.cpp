// Services, their transponders and channel numbers.
#include <channellist-access/db_access.h>

#include "check/rule.h"
#include "database/query.h"

namespace channel_lists {
namespace {

// The tuner of a DVB service, whatever its kind: all have a frequency.
#define EVERY_TUNER                                                                           \
    "(SELECT TunerId, Frequency FROM DvbTTuner UNION ALL SELECT TunerId, Frequency FROM "     \
    "DvbT2Tuner"                                                                              \
    " UNION ALL SELECT TunerId, Frequency FROM DvbCTuner UNION ALL SELECT TunerId, Frequency" \
    " FROM DvbC2Tuner UNION ALL SELECT TunerId, Frequency FROM DvbSTuner UNION ALL SELECT "   \
    "TunerId,"                                                                                \
    " Frequency FROM DvbS2Tuner)"
#define EVERY_SATELLITE_TUNER                                                                \
    "(SELECT 'DvbSTuner' AS Kind, TunerId, Satellite, Polarization FROM DvbSTuner UNION ALL" \
    " SELECT 'DvbS2Tuner', TunerId, Satellite, Polarization FROM DvbS2Tuner)"
// Those of a transponder.
#define SERVICES \
    "min(Name) || CASE count(*) WHEN 1 THEN '' ELSE ' and ' || (count(*) - 1) || ' more' END"
// A text of digits does as well as the number.
#define IS_NO_ID(column)                                                                        \
    "(CAST(" #column " AS TEXT) <> CAST(CAST(" #column " AS INTEGER) AS TEXT) OR CAST(" #column \
    " AS INTEGER) NOT BETWEEN 0 AND 65535)"
#define NO_ID(column) \
    "CASE WHEN " IS_NO_ID(column) " THEN '" #column " ' || quote(" #column ") || ', ' ELSE '' END"
// Which kinds of delivery a transponder's row is there for.
#define EVERY_KIND                                                                            \
    "(SELECT 2 AS Kind, TunerId FROM DvbTTuner UNION ALL SELECT 3, TunerId FROM DvbCTuner"    \
    " UNION ALL SELECT 4, TunerId FROM DvbSTuner UNION ALL SELECT 6, TunerId FROM DvbT2Tuner" \
    " UNION ALL SELECT 7, TunerId FROM DvbC2Tuner UNION ALL SELECT 8, TunerId FROM DvbS2Tuner)"

// clang-format off
constexpr Rule kRules[] = {
    {"service-uuid", Severity::Seen, Mend::Decision,
     "SELECT 'Service ' || Pid, CASE ifnull(Uuid, '') WHEN '' THEN 'has no uuid'"
     " ELSE 'its uuid ' || why_foul_text(Uuid) END"
     ", ifnull(Name, 'the service') || ' is shown, but no request can name it'"
     ", 'UPDATE Service SET Uuid = ... WHERE Pid = ' || Pid"
     " FROM Service WHERE why_foul_text(Uuid) IS NOT NULL"},

    {"service-uuid", Severity::Seen, Mend::Decision,
     "SELECT 'Service ' || group_concat(Pid, ', '), 'share the uuid ' || quote(Uuid)"
     ", 'a request for one of them may mean the other'"
     ", 'UPDATE Service SET Uuid = ... WHERE Pid = ' || max(Pid)"
     " FROM Service WHERE Uuid <> '' GROUP BY Uuid HAVING count(*) > 1"},

    {"service-name", Severity::Seen, Mend::Decision,
     "SELECT 'Service ' || Pid, 'its name ' || why_foul_text(coalesce(nullif(ServiceName, ''),"
     " nullif(ShortName, ''), Name))"
     ", 'the service is shown without a name, or with signs that are none'"
     ", 'UPDATE Service SET Name = ... WHERE Pid = ' || Pid"
     " FROM Service WHERE why_foul_text(coalesce(nullif(ServiceName, ''), nullif(ShortName, ''),"
     " Name)) IS NOT NULL"},

    {"no-service", Severity::Seen, Mend::Decision,
     "SELECT 'Service', 'holds no row, and ' || count(*) || ' entries of lists name services'"
     ", 'no list shows anything'"
     ", 'bring a backup back, or scan'"
     " FROM FavoriteItem WHERE NOT EXISTS (SELECT 1 FROM Service) HAVING count(*) > 0"},

    {"service-in-no-list", Severity::Seen, Mend::Decision,
     "SELECT 'Service ' || Pid, 'stands in no list'"
     ", 'nothing shows ' || ifnull(Name, 'the service')"
     ", 'put it into the All list, or remove it and its rows'"
     " FROM Service WHERE Pid NOT IN (SELECT ServiceId FROM FavoriteItem WHERE ServiceId IS NOT NULL)"},

    {"service-not-in-all", Severity::Seen, Mend::Decision,
     "SELECT 'Service ' || Pid, 'is not in the All list'"
     ", 'the list of all services lacks ' || ifnull(Name, 'it') || ', which cannot be added to a"
     " FAV list there'"
     ", 'at which number: INSERT INTO FavoriteItem (ServiceId, FavoriteId, OriginalFavoriteId, ChannelNum) ...'"
     " FROM Service WHERE Pid IN (SELECT ServiceId FROM FavoriteItem JOIN FavoriteList l ON"
     " FavoriteId = l.Pid AND Creator NOT LIKE 'tamun.sl2.servicelist$%')"
     " AND Pid NOT IN (SELECT ServiceId FROM FavoriteItem JOIN FavoriteList l ON FavoriteId = l.Pid"
     " AND Creator = 'tamun.sl2.servicelist$all' WHERE ServiceId IS NOT NULL)"
     " AND Pid IN (SELECT ServiceId FROM DvbService)"
     " AND EXISTS (SELECT 1 FROM FavoriteList WHERE Creator = 'tamun.sl2.servicelist$all')"},

    {"service-without-delivery", Severity::Seen, Mend::Decision,
     "SELECT 'Service ' || Pid, 'has no row in AnalogService or DvbService'"
     ", 'no list shows ' || ifnull(Name, 'the service') || '; ' || count(*) || ' of them hold it'"
     ", 'give it its row by a new scan, or remove it with its entries'"
     " FROM FavoriteItem i JOIN Service s ON s.Pid = i.ServiceId"
     " WHERE Pid NOT IN (SELECT ServiceId FROM AnalogService WHERE ServiceId IS NOT NULL)"
     " AND Pid NOT IN (SELECT ServiceId FROM DvbService WHERE ServiceId IS NOT NULL)"
     " GROUP BY Pid"},

    {"ids", Severity::Tuning, Mend::Decision,
     "SELECT 'Service ' || Pid, 'has ' || " NO_ID(Oid) " || " NO_ID(Tid) " || " NO_ID(Sid)
     " || 'and ids have 16 bits'"
     ", ifnull(Name, 'the service') || ' is not found on its transponder'"
     ", 'UPDATE DvbService SET Oid = ..., Tid = ..., Sid = ... WHERE ServiceId = ' || Pid"
     " FROM DvbService JOIN Service ON Pid = ServiceId WHERE Oid NOT NULL AND Tid NOT NULL"
     " AND Sid NOT NULL AND (" IS_NO_ID(Oid) " OR " IS_NO_ID(Tid) " OR " IS_NO_ID(Sid) ")"},

    {"ids", Severity::Tuning, Mend::Decision,
     "SELECT 'Tuner ' || t.TunerId, 'NITId is ' || quote(NITId) || ', and ids have 16 bits'"
     ", 'the network of ' || " SERVICES " || ' is not found'"
     ", 'which network: UPDATE Tuner SET NITId = ... WHERE TunerId = ' || t.TunerId"
     " FROM Tuner t JOIN DvbService USING (TunerId) JOIN Service ON Pid = ServiceId"
     " WHERE NITId NOT NULL AND (typeof(NITId) <> 'integer' OR NITId NOT BETWEEN 0 AND 65535)"
     " GROUP BY t.TunerId"},

    {"same-triplet", Severity::Odd, Mend::Decision,
     "SELECT 'Service ' || group_concat(Pid, ', '), 'have the triplet ' || Oid || ', ' || Tid || ', '"
     " || Sid || ' on one transponder, and other names'"
     ", 'all of them show the same programme'"
     ", 'which of them is right, by a new scan'"
     " FROM DvbService JOIN Service ON Pid = ServiceId WHERE TunerId NOT NULL AND Sid <> 0"
     " GROUP BY TunerId, Oid, Tid, Sid HAVING count(*) > 1 AND count(DISTINCT Name) > 1"},

    {"sid", Severity::Tuning, Mend::Decision,
     "SELECT 'Service ' || Pid, 'has Sid 0, which no programme has'"
     ", ifnull(Name, 'the service') || ' cannot be tuned'"
     ", 'scan the transponder anew'"
     " FROM DvbService JOIN Service ON Pid = ServiceId WHERE Sid = 0 AND Type IN (2, 3, 4, 6, 7, 8)"},

    {"frequency", Severity::Tuning, Mend::Decision,
     "SELECT 'Tuner ' || t.TunerId, 'Frequency is ' || quote(Frequency) || ', no frequency'"
     ", " SERVICES " || ' cannot be tuned'"
     ", 'scan the transponder anew'"
     " FROM " EVERY_TUNER " t JOIN DvbService d USING (TunerId) JOIN Service ON Pid = ServiceId"
     " WHERE Frequency NOT NULL AND (typeof(Frequency) <> 'integer' OR Frequency NOT BETWEEN 1 AND"
     " 31000000000) GROUP BY t.TunerId"},

    {"satellite", Severity::Tuning, Mend::Decision,
     "SELECT Kind || ' ' || t.TunerId, 'Satellite is ' || quote(Satellite)"
     " || ', Polarization ' || quote(Polarization)"
     ", " SERVICES " || ' cannot be tuned'"
     ", 'scan the transponder anew'"
     " FROM " EVERY_SATELLITE_TUNER " t JOIN DvbService USING (TunerId) JOIN Service ON Pid ="
     " ServiceId WHERE Satellite NOT NULL AND Polarization NOT NULL AND"
     " (typeof(Satellite) <> 'integer' OR Satellite NOT BETWEEN 1 AND 65535"
     " OR typeof(Polarization) <> 'integer' OR Polarization NOT BETWEEN 0 AND 4)"
     " GROUP BY Kind, t.TunerId"},

    {"uri", Severity::Tuning, Mend::Decision,
     "SELECT 'Service ' || Pid, 'Uri is ' || quote(Uri) || ', no tuning URI'"
     ", ifnull(Name, 'the service') || ' is shown, but cannot be tuned'"
     ", 'UPDATE Service SET Uri = ... WHERE Pid = ' || Pid"
     " FROM Service WHERE Type = 0 AND Uri NOT NULL AND Uri <> '' AND (Uri NOT LIKE '%://%' OR Uri LIKE '% %'"
     " OR why_foul_text(Uri) IS NOT NULL)"},

    {"lcn", Severity::Odd, Mend::Statement,
     "SELECT 'Lcn ' || group_concat(rowid, ', '), 'name service ' || quote(ServiceId)"
     " || ', and the service or their list does not exist'"
     ", 'nothing shows them'"
     ", 'DELETE FROM Lcn WHERE rowid IN (' || group_concat(rowid, ', ') || ')'"
     " FROM Lcn WHERE ServiceId IS NULL OR ServiceId NOT IN (SELECT Pid FROM Service)"
     " OR FavoriteId IS NULL OR FavoriteId NOT IN (SELECT Pid FROM FavoriteList)"
     " GROUP BY ServiceId"},

    {"lcn", Severity::Seen, Mend::Decision,
     "SELECT 'Lcn of service ' || ServiceId, 'Lcn is ' || quote(Lcn) || ', no channel number'"
     ", 'the column shows it as it is'"
     ", 'UPDATE Lcn SET Lcn = ... WHERE ServiceId = ' || ServiceId"
     " FROM Lcn WHERE typeof(Lcn) <> 'integer' OR Lcn NOT BETWEEN 0 AND 65535"},

    {"lcn", Severity::Odd, Mend::Decision,
     "SELECT 'Lcn of service ' || ServiceId, count(*) || ' rows give it the numbers ' || min(Lcn)"
     " || CASE WHEN min(Lcn) <> max(Lcn) THEN ' to ' || max(Lcn) ELSE ' again' END"
     ", 'the first of them counts, and which one that is depends on the indexes'"
     ", 'which number is right: DELETE FROM Lcn WHERE ServiceId = ' || ServiceId || ' AND Lcn = ...'"
     " FROM Lcn WHERE ServiceId NOT NULL GROUP BY ServiceId"
     " HAVING count(DISTINCT Lcn) > 1 OR count(DISTINCT FavoriteId) < count(*)"},

    {"biss-key", Severity::Tuning, Mend::Decision,
     "SELECT 'Service ' || Pid, 'bissKey is ' || quote(bissKey) || ', not 12, 16 or 32 hexadecimal digits'"
     ", ifnull(Name, 'the service') || ' stays scrambled'"
     ", 'UPDATE Service SET bissKey = ... WHERE Pid = ' || Pid"
     " FROM Service WHERE bissKey <> '' AND (length(bissKey) NOT IN (12, 16, 32)"
     " OR bissKey GLOB '*[^0-9A-Fa-f]*')"},
};

// Where the column stands in this table, and not in those of the kinds. 2 and 6, 3 and 7, 4 and 8 are
// the generations of one kind of delivery.
constexpr Rule kFrontends[] = {
    {"frontend", Severity::Tuning, Mend::Decision,
     "SELECT 'Tuner ' || t.TunerId, 'Frontend is ' || quote(Frontend) || ', no delivery system'"
     ", " SERVICES " || ' cannot be tuned'"
     ", 'UPDATE Tuner SET Frontend = ... WHERE TunerId = ' || t.TunerId"
     " FROM Tuner t JOIN DvbService USING (TunerId) JOIN Service ON Pid = ServiceId"
     " WHERE Frontend NOT NULL AND (typeof(Frontend) <> 'integer' OR Frontend NOT BETWEEN 1 AND 8)"
     " GROUP BY t.TunerId"},
    {"frontend", Severity::Tuning, Mend::Statement,
     "SELECT 'Tuner ' || t.TunerId, 'Frontend is ' || Frontend || ', and its services are of Type ' || min(Type)"
     ", " SERVICES " || ' cannot be tuned'"
     ", 'UPDATE Tuner SET Frontend = ' || min(Type) || ' WHERE TunerId = ' || t.TunerId"
     " FROM Tuner t JOIN DvbService USING (TunerId) JOIN Service ON Pid = ServiceId"
     " JOIN " EVERY_KIND " k ON k.TunerId = t.TunerId AND Kind = Type"
     " WHERE Type IN (2, 3, 4, 6, 7, 8) AND Frontend BETWEEN 1 AND 8"
     " GROUP BY t.TunerId HAVING min(Type) = max(Type)"
     " AND Frontend NOT IN (min(Type), CASE WHEN min(Type) < 5 THEN min(Type) + 4 ELSE min(Type) - 4 END)"},
};
// clang-format on

}  // namespace

void checkServices(Findings& findings) {
    applyAll(kRules, findings);
    examine("frontend", findings, [&] {
        if (queryNumber(db,
                        "SELECT count(*) FROM pragma_table_info('Tuner') WHERE lower(name) ="
                        " 'frontend'") != 0)
            applyAll(kFrontends, findings);
    });
}

}  // namespace channel_lists
