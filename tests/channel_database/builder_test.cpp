#include <channel-database/builder.h>
#include <channellist-access/db_access.h>
#include <gmock/gmock.h>

using namespace channel_database;
using testing::ElementsAre;

namespace {

struct BuilderTest : testing::Test {
    ChannelDatabase d{":memory:", Indexes::PrimaryKeysOnly};
};

// A row with a NULL cannot be read; only a tuner's and an LCN's values, the last, may be missing.
TEST_F(BuilderTest, ItemsOfEveryKindHaveNoNull) {
    ASSERT_EQ(dbaccess::initViews(d.connection()), SQLITE_OK);
    EXPECT_EQ(d.value("SELECT count(*) FROM sqlite_master WHERE type = 'index'"), "0");
    const List list = d.list("tamun.sl2.servicelist$all");
    const Service services[] = {d.uri("URI", "http://x"),
                                d.analog("A"),
                                d.dvbt("T"),
                                d.dvbc("C"),
                                d.dvbs("S"),
                                d.ip("IP"),
                                d.dvbt2("T2"),
                                d.dvbc2("C2"),
                                d.dvbs2("S2")};
    for (const Service& service : services) {
        d.put(list, service, service.id());
    }
    const auto rows = d.rows("SELECT * FROM FavoriteItemView ORDER BY Pid");
    ASSERT_EQ(rows.size(), std::size(services));
    for (const auto& row : rows) {
        EXPECT_EQ(std::count(row.begin(), row.end() - 4, "NULL"), 0) << row[0];
    }
}

TEST_F(BuilderTest, SetFindsTheTableOfAColumn) {
    Service s = d.dvbs("S");
    s.set("Oid", 133).set("NITId", nullptr).set("Frequency", "foul").set("GamingMode", 1);
    s.set("DvbService.TunerId", 77).favTag(1).favTag(4, 2);
    EXPECT_THAT(d.rows("SELECT Pid, GamingMode, FavTag, FavTag4, Oid, d.TunerId, t.TunerId, NITId,"
                       " Frequency FROM Service, DvbService d, Tuner t, DvbSTuner"),
                ElementsAre(ElementsAre("1", "1", "1", "2", "133", "77", "1", "NULL", "foul")));
    for (const char* column : {"PlpId", "Nonsense", "DvbTTuner.Frequency", ""}) {
        EXPECT_THROW(s.set(column, 1), std::runtime_error) << column;
    }
}

TEST_F(BuilderTest, KeysAreGivenSharedAndNeverGivenTwice) {
    const Service first = d.dvbt("with a tuner", 40);
    const Service second = d.service(Delivery::DvbT, "on the same", kNewId, first.tuner());
    EXPECT_EQ(second.id(), 41);
    EXPECT_EQ(second.tuner(), first.tuner());
    d.dvbt("without a tuner").without("Tuner");
    EXPECT_EQ(d.dvbt("next").tuner(), first.tuner() + 2);
    EXPECT_EQ(d.value("SELECT count(*) FROM Tuner"), "2");
    EXPECT_THROW(d.dvbt("again", 40), std::runtime_error);
    EXPECT_THROW(ChannelDatabase("/nonexistent/folder/file.db"), std::runtime_error);
}

TEST_F(BuilderTest, ATransactionLastsOnlyWhenCommitted) {
    ChannelDatabase same(d.connection());  // a borrowed connection keeps what it holds
    for (const char* lists : {"0", "1"}) {
        {
            Transaction transaction(d);
            d.list("User.tv");
            if (*lists == '1') {
                transaction.commit();
            }
        }
        EXPECT_EQ(same.value("SELECT count(*) FROM FavoriteList"), lists);
    }
}

}  // namespace
