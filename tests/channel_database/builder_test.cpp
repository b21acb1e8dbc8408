#include <channel-database/builder.h>
#include <channellist-access/db_access.h>

#include <gmock/gmock.h>

using namespace channel_database;
using testing::ElementsAre;

namespace {

struct BuilderTest : testing::Test {
    std::string uriOf(Id service) {
        return d.value("SELECT Uri FROM UriView WHERE Pid = " + std::to_string(service));
    }

    ChannelDatabase d{":memory:"};
};

TEST_F(BuilderTest, EveryKindHasATuningUriAndNoNull) {
    ASSERT_EQ(dbaccess::initViews(d.connection()), SQLITE_OK);
    const struct {
        Service service;
        const char* uri;
    } cases[] = {
        {d.uri("URI", "http://example.org/stream"), "http://example.org/stream"},
        {d.analog("Analog"), "rec://plain/analog?frequency=175250&brdstd=0&colstd=0&frontend=1"},
        {d.dvbt("T"),
         "rec://plain/dvbt?frontend=2&dvbtpriority=0&frequency=506000&bandwidth=8"
         "&modulation=64&onid=1&sid=3&tsid=1000&nid=1"},
        {d.dvbc("C").encrypted(),
         "rec://plain/dvbc?frontend=3&frequency=394000&symbolrate=6900"
         "&modulation=256&onid=1&sid=4&tsid=1000&nid=1&encrypted=1"},
        {d.dvbs("S"),
         "rec://plain/dvbs?frontend=4&satid=4&coderate=34&frequency=11953500"
         "&symbolrate=27500&modulation=2&polarization=1&band=2&onid=1&sid=5&tsid=1000"
         "&nid=1"},
        {d.ip("IP"),
         "rec://plain/dvbip?url=rtp://239.0.0.1:5000&frontend=5&onid=1&sid=6&tsid=1000"},
        {d.dvbt2("T2").plpId(0x0102),
         "rec://plain/dvbt?frontend=6&plpid=2&groupid=1"
         "&frequency=538000&bandwidth=8&modulation=256&onid=1&sid=7"
         "&tsid=1000&nid=1"},
        {d.dvbc2("C2"),
         "rec://plain/dvbc?frontend=7&plpid=0&datasliceid=1&frequency=610000"
         "&bandwidth=8&onid=1&sid=8&tsid=1000&nid=1"},
        {d.dvbs2("S2"),
         "rec://plain/dvbs?frontend=8&satid=4&modcod=13&frequency=11493750"
         "&symbolrate=22000&polarization=1&band=1&onid=1&sid=9&tsid=1000&nid=1"},
    };
    const List list = d.list("tamun.sl2.servicelist$all");
    for (const auto& c : cases) {
        EXPECT_EQ(uriOf(c.service), c.uri);
        d.put(list, c.service, c.service.id());
    }
    // What a row cannot be converted without: only a tuner's and an LCN's values may be missing.
    for (const auto& row : d.rows("SELECT * FROM FavoriteItemView ORDER BY Pid")) {
        const auto nulls = std::count(row.begin(), row.end() - 4, "NULL");
        EXPECT_EQ(nulls, 0) << row[0];
    }
    EXPECT_EQ(d.value("SELECT count(*) FROM FavoriteItemView"), "9");
}

TEST_F(BuilderTest, SetFindsTheTableOfAColumn) {
    Service s = d.dvbs("S");
    s.set("Oid", 133).set("NITId", nullptr).set("Frequency", "foul").set("GamingMode", 1);
    s.set("DvbService.TunerId", 77).favTag(1).favTag(4, 2);
    EXPECT_THAT(d.rows("SELECT Pid, GamingMode, FavTag, FavTag4 FROM Service"),
                ElementsAre(ElementsAre("1", "1", "1", "2")));
    EXPECT_THAT(d.rows("SELECT Oid, TunerId FROM DvbService"),
                ElementsAre(ElementsAre("133", "77")));
    EXPECT_THAT(
        d.rows("SELECT TunerId, NITId, Frequency FROM Tuner JOIN DvbSTuner USING (TunerId)"),
        ElementsAre(ElementsAre("1", "NULL", "foul")));
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
}

TEST_F(BuilderTest, ATransactionLastsOnlyWhenCommitted) {
    {
        Transaction transaction(d);
        d.list("User.tv");
    }
    EXPECT_EQ(d.value("SELECT count(*) FROM FavoriteList"), "0");
    Transaction transaction(d);
    d.list("User.tv");
    transaction.commit();
    ChannelDatabase same(d.connection());  // a borrowed connection keeps what it holds
    EXPECT_EQ(same.value("SELECT count(*) FROM FavoriteList"), "1");
}

TEST_F(BuilderTest, FailuresAreNamed) {
    EXPECT_THROW(ChannelDatabase("/nonexistent/folder/file.db"), std::runtime_error);
    try {
        d.run("INSERT INTO Nowhere VALUES (1)");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("no such table: Nowhere"));
    }
}

}  // namespace
