// The schema serves every statement of the library: none is ambiguous, none walks a large table.
#include <channel-database/builder.h>
#include <channellist-access/db_access.h>

#include <gmock/gmock.h>

using namespace channel_database;
using testing::HasSubstr;
using testing::Not;

namespace {

const char* const kStatements[] = {
    "SELECT * FROM FavoriteItemView WHERE FavoriteId=(select Pid From FavoriteList Where Uuid='u') "
    "ORDER BY ChannelNum;",
    "SELECT Attributes FROM FavoriteList WHERE Uuid = 'u';",
    "SELECT Pid FROM FavoriteList WHERE Creator like 'User.tvFAV%' ;",
    "UPDATE FavoriteItem SET ChannelNum = ?, isDeleted =? WHERE FavoriteId= ? AND serviceId= ?;",
    "SELECT Id FROM FavoriteItem, Service WHERE FavoriteId = 3 AND isDeleted = 0 AND "
    "Service.Pid=FavoriteItem.ServiceId  ORDER BY ChannelNum;",
    "UPDATE FavoriteItem SET ChannelNum = ? WHERE Id = ?; ",
    "UPDATE FavoriteList SET MaxChannelNumber = (SELECT max(ChannelNum) FROM FavoriteItem WHERE "
    "FavoriteId=3 AND isDeleted = 0) WHERE Pid = 3;",
    "UPDATE FavoriteList SET UpdateTag = case UpdateTag WHEN 65535 then 0 else UpdateTag+1 end "
    "Where Pid= 3;",
    "SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = 3;",
    "INSERT INTO FavoriteItem (ServiceId, ChannelNum, FavoriteId, OriginalFavoriteId) VALUES (?, "
    "?, ?, ?);",
    "DELETE FROM FavoriteItem WHERE FavoriteId= ? AND serviceId= ?;",
    "UPDATE Service SET FavTag= ?, FavTag2= ?, FavTag3= ?, FavTag4= ? WHERE Pid= ?;",
    "UPDATE FavoriteItem SET isDeleted = ? WHERE FavoriteId IN(3,4,5,6) AND serviceId= ?;",
    "SELECT sv.Uuid FROM Service sv, DvbService ds, FavoriteItem fi, FavoriteList fl WHERE sv.Pid "
    "= fi.ServiceId AND fi.FavoriteId = fl.Pid AND Creator like 'servicelist://tamun.Astra 19.2%E' "
    "AND sv.Pid = ds.ServiceId AND ds.TunerId IN (SELECT tu.TunerId FROM Tuner tu, DvbSTuner tus "
    "WHERE tu.TunerId = tus.TunerId AND Satellite = 4 AND Frontend = 4 AND (tus.Frequency >= "
    "12600750 AND  tus.Frequency <= 12606750)) AND isDeleted = 0 ORDER BY ChannelNum;",
    "SELECT Encrypted FROM Service sv, FavoriteItem fi, FavoriteList fl WHERE sv.Pid = "
    "fi.ServiceId AND fi.FavoriteId = fl.Pid AND Creator like 'servicelist://tamun.Astra 19.2%E';",
    "SELECT bissKey From Service WHERE uuid='u';",
};

// Walks all lists by its nature, so that only its look at the LCN rows has to be a search.
const char* const kFolderStatement =
    "SELECT Pid,Attributes+(CASE WHEN (SELECT COUNT(*) FROM LCN WHERE FavoriteId=Pid)>0 AND "
    "NetworkId<>14 THEN 32 ELSE 0 END),UpdateTag FROM FavoriteList WHERE "
    "creator<>'tamun.sl2.servicelist$all' ORDER BY CASE WHEN NetworkId=61 THEN BATId ELSE 0 END, "
    "Name COLLATE NOCASE;";

std::string planOf(ChannelDatabase& database, const std::string& statement) {
    std::string plan;
    for (const auto& row : database.rows("EXPLAIN QUERY PLAN " + statement)) {
        plan += row[3] + "\n";
    }
    return plan;
}

TEST(Schema, EveryStatementIsValidAndSearches) {
    ChannelDatabase database(":memory:");
    ASSERT_EQ(dbaccess::initViews(database.connection()), SQLITE_OK);
    for (const char* statement : kStatements) {
        EXPECT_THAT(planOf(database, statement), Not(HasSubstr("SCAN"))) << statement;
    }
    EXPECT_THAT(planOf(database, kFolderStatement), HasSubstr("SEARCH LCN USING"));
}

TEST(Schema, PrimaryKeysAloneServeEveryStatementToo) {
    ChannelDatabase database(":memory:", Indexes::PrimaryKeysOnly);
    ASSERT_EQ(dbaccess::initViews(database.connection()), SQLITE_OK);
    EXPECT_EQ(database.value("SELECT count(*) FROM sqlite_master WHERE type = 'index'"), "0");
    for (const char* statement : kStatements) {
        EXPECT_NO_THROW(planOf(database, statement));
    }
    EXPECT_NO_THROW(planOf(database, kFolderStatement));
}

TEST(Schema, ANewFavouriteShows) {
    ChannelDatabase database(":memory:");
    database.run(kStatements[9], {21, 1, 3, 3});
    EXPECT_EQ(database.rows("SELECT isDeleted, Visible, Selectable FROM FavoriteItem"),
              (std::vector<std::vector<std::string>>{{"0", "-1", "-1"}}));
}

}  // namespace
