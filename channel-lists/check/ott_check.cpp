// The positions of OTT channels, which belong to another component.
#include <channellist-access/db_access.h>

#include "check/finding.h"
#include "database/list_naming.h"
#include "database/query.h"

namespace channel_lists {
namespace {

constexpr char kTable[] = "SQL_OTTFavChannels";

void addRows(std::string const& sql, char const* viewer, char const* decides, Findings& findings) {
    Query rows(db_zentova, sql);
    while (rows.next())
        findings.push_back(
            {"ott-number", Severity::Odd, kTable, rows.text(0), viewer, decision(decides)});
}

// Who holds the number by then is another service.
void checkTaken(List const& list, Findings& findings) {
    Query positions(db_zentova,
                    std::string("SELECT DISTINCT favIndex FROM ") + kTable +
                        " WHERE favName = ? AND typeof(favIndex) = 'integer' ORDER BY favIndex");
    positions.bind("FAV" + std::to_string(list.favIndex));
    Query holder(db,
                 "SELECT i.ServiceId, s.Name FROM FavoriteItem i JOIN Service s ON s.Pid ="
                 " i.ServiceId WHERE FavoriteId = ? AND ChannelNum = ? AND isDeleted = 0");
    while (positions.next()) {
        holder.reset();
        holder.bind(std::int64_t{list.pid}).bind(positions.number(0));
        if (!holder.next())
            continue;
        findings.push_back(
            {"ott-number", Severity::Odd, kTable,
             "an OTT channel has number " + positions.text(0) + " of " + displayName(list) +
                 ", and so has service " + holder.text(0) + " (" + holder.text(1) + ")",
             "the number keys reach one of them only; renumbering moves " + holder.text(1),
             decision("channellist edit " + displayName(list) + " move id:" + holder.text(0) +
                      " to NUMBER")});
    }
}

}  // namespace

void checkOtt(Findings& findings) {
    TimeLimit::restart("ott-number");
    try {
        queryNumber(db_zentova, "SELECT count(*) FROM sqlite_master");
    } catch (Failure const& failure) {
        findings.push_back({"ott-file", Severity::Odd, "OTT database", failure.what(),
                            "no number is kept free for OTT channels",
                            decision("its owner has to make it readable, or anew")});
        return;
    }
    examine("ott-number", findings, [&] {
        if (queryNumber(db_zentova,
                        std::string("SELECT count(*) FROM sqlite_master WHERE lower(name)"
                                    " = lower('") +
                            kTable + "')") == 0)
            return;  // which means no OTT channels
        addRows(std::string(
                    "SELECT 'favIndex of ' || ifnull(favName, 'NULL') || ' is ' ||"
                    " quote(favIndex) || ', no number' || CASE count(*) WHEN 1 THEN '' ELSE ', in '"
                    " || count(*) || ' rows' END FROM ") +
                    kTable +
                    " WHERE typeof(favIndex) <> 'integer' OR favIndex NOT BETWEEN 0 AND"
                    " 2147483647 GROUP BY favName, favIndex",
                "no number is kept free for the channel", "its owner has to give it a number",
                findings);
        addRows(
            std::string("SELECT count(*) || ' OTT channels have number ' || favIndex || ' of ' ||"
                        " favName FROM ") +
                kTable +
                " WHERE typeof(favIndex) = 'integer' GROUP BY favName, favIndex HAVING"
                " count(*) > 1",
            "the number keys reach one of them only",
            "its owner has to give them numbers of their own", findings);
        for (List const& list : allLists())
            if (list.favIndex >= 1 && list.favIndex <= 4)
                checkTaken(list, findings);
    });
}

}  // namespace channel_lists
