#include <channel-database/import.h>
#include <channellist-access/db_access.h>

#include <gmock/gmock.h>

#include <sstream>

using namespace channel_database;
using testing::ElementsAre;

namespace {

using Rows = std::vector<std::vector<std::string>>;

ChannelsConf parsed(std::string const& text) {
    std::istringstream stream(text);
    return parseChannelsConf(stream);
}

char const kSmallList[] =
    "Ungrouped:410:M64:C:6900:255:256:0:100:8:0:0:0\n"
    ":First\n"
    "Astra HD,AHD:11493:HC23M5O35P0S1:S19.2E:22000:5101=27:0:0:0:10301:1:1019:0\n"
    "Radio:12603:LC56M2S0:S19.2E:22000:0:101:0:0:7289:1:1111:0\n"
    ":@10 Second\n"
    "T2:474166670:B8M256P3S1T32:T:0:5=27:0:0:0:17472:9018:16515:0\n"
    "T2:474166670:B8M256P3S1T32:T:0:5=27:0:0:0:17472:9018:16515:0\n"
    "West:12515:VC56M2S0:S1W:22000:5=2:0:0:0:3:2:1:0\n"
    ":FAV2\n"
    "Astra HD,AHD:11493:HC23M5O35P0S1:S19.2E:22000:5101=27:0:0:0:10301:1:1019:0\n"
    ":@7\n"
    "West:12515:VC56M2S0:S1W:22000:5=2:0:0:0:3:2:1:0\n"
    "#channellist 3 hidden Radio:12603:LC56M2S0:S19.2E:22000:0:101:0:0:7289:1:1111:0\n";

TEST(Import, MakesTheLists) {
    ChannelDatabase d(":memory:");
    std::vector<std::size_t> steps;
    importChannels(d, parsed(kSmallList), [&](std::size_t done, std::size_t total) {
        steps.push_back(done);
        EXPECT_EQ(total, 9U);
    });
    EXPECT_THAT(steps, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_EQ(
        d.rows("SELECT Creator, Name, Uuid, NetworkId, MaxChannelNumber,"
               " (SELECT group_concat(ChannelNum || s.Name, ' ') FROM FavoriteItem"
               "  JOIN Service s ON s.Pid = ServiceId WHERE FavoriteId = l.Pid)"
               " FROM FavoriteList l WHERE Uuid <> 'av' ORDER BY Creator"),
        (Rows{{"User.radio.1", "First", "user-radio-1", "-1", "1", "1Radio"},
              {"User.tv.1", "First", "user-tv-1", "-1", "1", "1Astra HD"},
              {"User.tv.2", "Second", "user-tv-2", "-1", "3", "1T2 2T2 3West"},
              {"User.tvFAV1", "FAV1", "fav1", "-1", "0", "NULL"},
              {"User.tvFAV2", "FAV2", "fav2", "-1", "7", "1Astra HD 3Radio 7West"},
              {"User.tvFAV3", "FAV3", "fav3", "-1", "0", "NULL"},
              {"User.tvFAV4", "FAV4", "fav4", "-1", "0", "NULL"},
              {"servicelist://tamun.Astra 19.2°E", "Astra 19.2°E", "astra-19.2e", "1", "3",
               "2Astra HD 3Radio"},
              {"servicelist://tamun.dvbc", "DVB-C", "dvbc", "-1", "1", "1Ungrouped"},
              {"servicelist://tamun.dvbs", "DVB-S", "dvbs", "-1", "12", "2Astra HD 3Radio 12West"},
              {"servicelist://tamun.dvbt", "DVB-T", "dvbt", "-1", "11", "10T2 11T2"},
              {"tamun.sl2.servicelist$all", "$all", "all", "-1", "12",
               "1Ungrouped 2Astra HD 3Radio 10T2 11T2 12West"}}));
    EXPECT_EQ(
        d.value(
            "SELECT count(*) FROM FavoriteItem i JOIN Service s ON s.Pid = ServiceId"
            " JOIN FavoriteList l ON l.Pid = FavoriteId WHERE l.Name LIKE 'FAV%'"
            " AND (Creator = 'User.tvFAV1') <> FavTag AND (Creator = 'User.tvFAV2') <> FavTag2"),
        "0");
    EXPECT_EQ(
        d.value("SELECT count(*) FROM FavoriteItem i JOIN FavoriteList l ON FavoriteId = l.Pid"
                " WHERE l.Uuid = 'av'"),
        "11");
}

TEST(Import, KeepsTheServicesAndTheirTransponders) {
    ChannelDatabase d(":memory:");
    importChannels(d, parsed(kSmallList));
    ASSERT_EQ(dbaccess::initViews(d.connection()), SQLITE_OK);
    char const* const services[][2] = {
        {"C-0-410-8|1|1|0|",
         "c?frontend=3&frequency=410000&symbolrate=6900&modulation=64&onid=0&sid=8&tsid=0"
         "&nid=0&encrypted=1"},
        {"S19.2E-1-1019-10301|1|0|1|Astra HD",
         "s?frontend=8&satid=4&modcod=13&frequency=11493000&symbolrate=22000"
         "&polarization=1&band=1&onid=1&sid=10301&tsid=1019&nid=1"},
        {"S19.2E-1-1111-7289|2|0|0|",
         "s?frontend=4&satid=4&coderate=56&frequency=12603000&symbolrate=22000"
         "&modulation=2&polarization=3&band=2&onid=1&sid=7289&tsid=1111&nid=1"},
        {"T-9018-16515-17472|1|0|0|",
         "t?frontend=6&plpid=3&groupid=0&frequency=474167&bandwidth=8&modulation=256"
         "&onid=9018&sid=17472&tsid=16515&nid=9018"},
        {"T-9018-16515-17472#2|1|0|0|",
         "t?frontend=6&plpid=3&groupid=0&frequency=474167&bandwidth=8&modulation=256"
         "&onid=9018&sid=17472&tsid=16515&nid=9018"},
        {"S1W-2-1-3|1|0|0|",
         "s?frontend=4&satid=4590&coderate=56&frequency=12515000&symbolrate=22000"
         "&modulation=2&polarization=2&band=2&onid=2&sid=3&tsid=1&nid=2"}};
    auto const rows = d.rows(
        "SELECT s.Uuid || '|' || MediaType || '|' || Encrypted || '|' || Hdtv || '|' || "
        "ServiceName,"
        " u.Uri FROM Service s JOIN UriView u USING (Pid) JOIN DvbService ON ServiceId = s.Pid");
    ASSERT_EQ(rows.size(), std::size(services));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_THAT(rows[i],
                    ElementsAre(services[i][0], "rec://plain/dvb" + std::string(services[i][1])));
    }
    EXPECT_EQ(d.value("SELECT count(*) FROM Tuner"), "5") << "both T2 services share one";
    EXPECT_THROW(importChannels(d, parsed(kSmallList)), std::runtime_error) << "holds lists";
    EXPECT_EQ(d.value("SELECT count(*) FROM Service WHERE Type <> 0"), "6");
}

}  // namespace
