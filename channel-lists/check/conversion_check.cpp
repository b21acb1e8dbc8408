// Asks the library to convert every row that it would deliver, and names the values that do not.
#include <channellist-access/db_access.h>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>

#include "check/finding.h"
#include "database/list_naming.h"
#include "database/query.h"

namespace channel_lists {
namespace {

enum class Owner { Service, Item, Derived };

struct RawColumn {
    char const* name;    // in FavoriteItemView
    Owner owner;         // whose column it is
    char const* stored;  // its name there
};

// The columns of a raw service row, in their order.
constexpr RawColumn kColumns[] = {
    {"Pid", Owner::Service, "Pid"},
    {"ChannelNum", Owner::Item, "ChannelNum"},
    {"InternalName", Owner::Derived, ""},
    {"ExternalName", Owner::Derived, ""},
    {"FIVisible", Owner::Item, "Visible"},
    {"FISelectable", Owner::Item, "Selectable"},
    {"NetworkId", Owner::Derived, ""},
    {"Uuid", Owner::Service, "Uuid"},
    {"Uri", Owner::Derived, ""},
    {"Encrypted", Owner::Service, "Encrypted"},
    {"MediaType", Owner::Service, "MediaType"},
    {"ParentalLock", Owner::Service, "ParentalLock"},
    {"SVisible", Owner::Service, "Visible"},
    {"SSelectable", Owner::Service, "Selectable"},
    {"EpgService", Owner::Service, "EpgService"},
    {"EngineAutoStart", Owner::Service, "EngineAutoStart"},
    {"VolumeCorrection", Owner::Service, "VolumeCorrection"},
    {"SoundSelection", Owner::Service, "SoundSelection"},
    {"GamingMode", Owner::Service, "GamingMode"},
    {"Hdtv", Owner::Service, "Hdtv"},
    {"TtxPreviewPage", Owner::Service, "TtxPreviewPage (AnalogService or DvbService)"},
    {"TtxSubtitlePage", Owner::Service, "TtxSubtitlePage (AnalogService or DvbService)"},
    {"TtxCharEnc", Owner::Service, "TtxCharEnc (AnalogService or DvbService)"},
    {"Protected", Owner::Service, "Protected"},
    {"TunerUuid", Owner::Derived, ""},
    {"isDeleted", Owner::Item, "isDeleted"},
    {"FavTag", Owner::Service, "FavTag"},
    {"FavTag2", Owner::Service, "FavTag2"},
    {"FavTag3", Owner::Service, "FavTag3"},
    {"FavTag4", Owner::Service, "FavTag4"},
    {"HbbTvEnable", Owner::Service, "HbbtvEnable"},
    {"Type", Owner::Service, "Type"},
    {"Lcn", Owner::Derived, ""},
    {"NITId", Owner::Derived, ""},
};
constexpr std::size_t kPid = 0, kChannelNum = 1, kInternalName = 2, kExternalName = 3, kUuid = 7,
                      kType = 31;

bool converts(ResultRow const& row) {
    try {
        dbaccess::fetchServiceItem(row);
        return true;
    } catch (boost::bad_lexical_cast const&) {
        return false;
    }
}

bool isTeletext(RawColumn const& column) { return std::strncmp(column.name, "Ttx", 3) == 0; }

// Whether the row says if it is an input, which has no teletext. A name or uuid that is missing is
// a finding of its own.
bool isTold(ResultRow const& row) { return !row[kInternalName].empty() && !row[kUuid].empty(); }

// Whether the column alone does not convert. The names that make it an input stay, because an
// input needs fewer columns.
bool isFoul(ResultRow const& row, std::size_t column) {
    ResultRow probe(row.size(), "0");
    for (std::size_t const kept : {kInternalName, kUuid, column})
        probe[kept] = row[kept];
    return !converts(probe);
}

std::string itemIds(List const& list, std::string const& servicePid) {
    Query ids(db,
              "SELECT group_concat(Id, ', ') FROM (SELECT Id FROM FavoriteItem"
              " WHERE FavoriteId = ? AND ServiceId = CAST(? AS INTEGER) LIMIT 5)");
    ids.bind(std::int64_t{list.pid}).bind(servicePid).next();
    return ids.text(0);
}

// A service stands in many lists, and a transponder has many services: one finding speaks for all.
class ServiceFindings {
  public:
    void add(Finding const& finding, List const& list, ResultRow const& row) {
        auto const [known, isNew] =
            known_.emplace(finding.row + ": " + finding.what, findings_.size());
        if (isNew) {
            findings_.push_back(finding);
            services_.push_back({row[kPid], {}});
        } else if (services_[known->second].first != row[kPid]) {
            services_[known->second].others.insert(row[kPid]);
            return;
        }
        constexpr int kMostLists = 5;
        int const lists = ++lists_[known->second];
        if (lists <= kMostLists)
            findings_[known->second].viewer +=
                (isNew ? " " : ", ") + displayName(list) + " (number " + row[kChannelNum] + ")";
        else if (lists == kMostLists + 1)
            findings_[known->second].viewer += " and others";
    }
    Findings findings() const {
        Findings all = findings_;
        for (std::size_t i = 0; i < all.size(); ++i)
            if (std::size_t const others = services_[i].others.size(); others != 0)
                all[i].viewer += ", and " + std::to_string(others) + " more service" +
                                 (others == 1 ? "" : "s") + " of the transponder";
        return all;
    }

  private:
    struct Services {
        std::string first;
        std::set<std::string> others;
    };
    Findings findings_;
    std::vector<Services> services_;  // by the finding
    std::unordered_map<std::string, std::size_t> known_;
    std::map<std::size_t, int> lists_;
};

std::string quotedValue(Query const& rows, std::size_t column) {
    int const index = static_cast<int>(column);
    return rows.isNull(index) ? "NULL" : '\'' + doubled(rows.text(index), '\'') + '\'';
}

// Of all rows with the value; a teletext column's table is that of the service's kind. 0 in place
// of NULL changes nothing for a viewer; what a value was meant to be, and whether a service is to
// be shown, is for its owner to say.
WayOut mending(RawColumn const& column, std::string const& value, ResultRow const& row) {
    std::string const stored = column.stored;
    std::string const name = stored.substr(0, stored.find(' '));
    bool const decides = value != "NULL" || column.owner == Owner::Item || name == "Type" ||
                         name == "Visible" || name == "Selectable";
    std::string table = column.owner == Owner::Item ? "FavoriteItem" : "Service";
    if (isTeletext(column))
        table = row[kType] == "1" ? "AnalogService" : "DvbService";
    std::string const sql = "UPDATE " + table + " SET " + name + " = " + (decides ? "..." : "0") +
                            " WHERE " + name + " IS " + value;
    return decides ? decision("which number is meant: " + sql) : statements(sql);
}

// The row or values without which a tuning URI is null.
struct Missing {
    std::string row;
    std::string what;
};

Missing whatIsMissing(ResultRow const& row) {
    constexpr char const* kTables[] = {"",           "AnalogService", "DvbTTuner",
                                       "DvbCTuner",  "DvbSTuner",     "DvbIpTuner",
                                       "DvbT2Tuner", "DvbC2Tuner",    "DvbS2Tuner"};
    constexpr std::size_t kKinds = sizeof kTables / sizeof *kTables;
    std::size_t const type =
        row[kType].size() == 1 ? static_cast<std::size_t>(row[kType][0] - '0') : 0;
    Missing missing{"Service " + row[kPid], "a value of its tuning URI is NULL"};
    Query service(db, "SELECT TunerId, * FROM DvbService WHERE ServiceId = " + row[kPid]);
    if (type < 2 || type >= kKinds || !service.next())
        return missing;
    std::string nulls;
    auto const addNulls = [&](std::string const& table, Query const& values, int first) {
        for (int i = first; i < values.columns(); ++i)
            if (values.isNull(i))
                nulls += (nulls.empty() ? "" : ", ") + table + "." + values.name(i);
    };
    if (!service.isNull(0)) {
        for (std::string const& table : {std::string("Tuner"), std::string(kTables[type])}) {
            Query tuner(db, "SELECT * FROM " + table + " WHERE TunerId = ?");
            if (!tuner.bind(service.text(0)).next())
                return {table + " " + service.text(0),
                        "does not exist, and DvbService names it as TunerId"};
            addNulls(table, tuner, 0);
        }
    }
    addNulls("DvbService", service, 1);
    missing.what += nulls.empty() ? "" : "; NULL in its rows: " + nulls;
    return missing;
}

void nameFoulColumns(List const& list, Query const& rows, ResultRow const& row,
                     ServiceFindings& findings) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        RawColumn const& column = kColumns[i];
        if (column.owner == Owner::Derived || !isFoul(row, i) ||
            (isTeletext(column) && !isTold(row)))
            continue;
        std::string const name = column.owner == Owner::Item
                                     ? "FavoriteItem " + itemIds(list, row[kPid])
                                     : "Service " + row[kPid];
        std::string const value = quotedValue(rows, i);
        findings.add({"unreadable-number", Severity::Seen, name,
                      std::string(column.stored) + " is " + value + ", no number",
                      "the set takes it as 0 for " + row[kExternalName] + ", in",
                      mending(column, value, row)},
                     list, row);
    }
}

void checkLocator(List const& list, ResultRow const& row, ServiceFindings& findings) {
    bool const unknownType = sv.locator == "about:blank";
    if (sv.locator.empty() || unknownType) {
        Missing const missing =
            unknownType
                ? Missing{"Service " + row[kPid], "Type " + row[kType] + " is no kind of delivery"}
                : whatIsMissing(row);
        findings.add({"no-locator", Severity::Tuning, missing.row, missing.what,
                      row[kExternalName] + " is shown, but cannot be tuned, in",
                      decision("scan the service anew")},
                     list, row);
    }
}

std::string serviceQuery() {
    std::string sql = "SELECT ";
    for (RawColumn const& column : kColumns)
        sql += (&column == kColumns ? "" : ",") + std::string(column.name);
    return sql + " FROM FavoriteItemView WHERE FavoriteId = ? ORDER BY ChannelNum";
}

void checkServiceRows(Findings& findings) {
    dbaccess::initViews(db);
    Query rows(db, serviceQuery());
    ServiceFindings found;
    for (List const& list : allLists()) {
        rows.reset();
        rows.bind(std::int64_t{list.pid});
        while (rows.next()) {
            ResultRow row;
            for (int i = 0; i < rows.columns(); ++i)
                row.push_back(rows.text(i));
            if (converts(row))
                checkLocator(list, row, found);
            else
                nameFoulColumns(list, rows, row, found);
        }
    }
    Findings const all = found.findings();
    findings.insert(findings.end(), all.begin(), all.end());
}

void checkFolders(Findings& findings) {
    Query rows(db,
               "SELECT Pid, Uuid, Name, Creator, Attributes, NetworkId, UpdateTag"
               " FROM FavoriteList");
    while (rows.next()) {
        ResultRow row;
        for (int i = 0; i < rows.columns(); ++i)
            row.push_back(rows.text(i));
        ResultSet converted;
        try {
            dbaccess::computeFolder(rows.columns(), row, &converted);
        } catch (boost::bad_lexical_cast const&) {
            findings.push_back(
                {"unreadable-number", Severity::Seen, "FavoriteList " + row[0],
                 "Attributes is " + quotedValue(rows, 4) + ", no number",
                 "the set's overview of lists lacks " + row[2],
                 rows.isNull(4)
                     ? statements("UPDATE FavoriteList SET Attributes = 0 WHERE Pid = " + row[0])
                     : decision("which number is meant: UPDATE FavoriteList SET Attributes = ... "
                                "WHERE Pid = " +
                                row[0])});
        }
    }
}

}  // namespace

void checkConversion(Findings& findings) {
    for (auto const check : {checkFolders, checkServiceRows})
        examine(
            "unreadable-number", findings, [&] { check(findings); });
}

}  // namespace channel_lists
