#include <channel-database/channel_list.h>
#include <channel-database/enigma2.h>

#include <gmock/gmock.h>

#include <sstream>

using namespace channel_database;

namespace {

// What the importer takes from each channel, and why others are skipped.
std::string summary(ChannelsConf const& list) {
    std::ostringstream text;
    for (Channel const& c : list.channels)
        text << c.line << ' ' << c.name << '/' << c.provider << ' ' << c.source << ' '
             << c.frequencyInKHz() << ' ' << c.polarization << c.parameterText() << ' '
             << c.symbolRate << (c.isRadio() ? " radio " : " tv ")
             << (c.isEncrypted() ? "encrypted " : "") << c.networkId << '-' << c.transportStreamId
             << '-' << c.serviceId << '\n';
    for (RejectedLine const& rejected : list.rejected)
        text << rejected.line << ": " << rejected.reason << ": " << rejected.text << '\n';
    return text.str();
}

ChannelsConf parsed(ChannelsConf (*parse)(std::istream&), std::string const& text) {
    std::istringstream stream(text);
    return parse(stream);
}

// Every kind of transponder, converters, data, foul lines, in each version.
TEST(Lamedb, IsReadInEveryVersion) {
    char const older[] =
        "transponders\n"
        "00c00000:03fb:0001\n\ts 11362000:22000000:0:2:192:2:0:1:2:0:2\n/\n"
        "00c00000:0441:0001\n\ts 12188000:27500000:1:3:192:2:0\n/\n"
        "0e080000:0001:0002\n\ts 12515000:22000000:3:0:3592:2:0:0:1\n/\n"
        "ffff0000:0441:0085\n\tc 338000:6900000:2:5:0:0:0\n/\n"
        "eeee0000:0101:2114\n\tt 474000000:0:5:5:3:2:4:4:2:0:1:7\n/\n"
        "00010000:0801:0600\n\ts 1682750:6900000:0:5:1:0:0\n/\n"
        "00c00000:0001:0001\n\tx nothing\n/\n"
        "end\nservices\n"
        "283d:00c00000:03fb:0001:25:0\n\xC2\x86"
        "Das Erste HD\xC2\x87\np:ARD\n"
        "2ee3:00c00000:0441:0001:1:0\nRTL\np:CBC,c:0000a3,C:1837,C:0000,f:40\n"
        "0001:0e080000:0001:0002:2:0\nS\xFC"
        "d\np:\n"
        "0002:ffff0000:0441:0085:1:0:0\n\np:\n"
        "0003:eeee0000:0101:2114:31:0\nT2\np:\n"
        "0004:00010000:0801:0600:1:0\nZiggo\np:\n"
        "0005:00c00000:0441:0001:12:0\nData\np:\n"
        "0006:00c00000:9999:0001:1:0\nLost\np:\n"
        "foul\nFoul\np:\nend\nHave a lot of bugs!\n";
    char const rewritten[] =
        "eDVB services /4/\ntransponders\n"
        "00c00000:03fb:0001\n\ts 11362000:22000000:0:2:192:2:0:1:2:0:2\n/\n"
        "00c00000:0441:0001\n\ts 12188000:27500000:1:3:192:2:0\n/\n"
        "0e080000:0001:0002\n\ts 12515000:22000000:3:0:3592:2:0\n/\n"
        "ffff0000:0441:0085\n\tc 338000:6900000:2:5:0:0:0\n/\n"
        "eeee0000:0101:2114\n\tt 474000000:0:5:5:3:2:4:4:2:0:1:7\n/\n"
        "ffff0000:0801:0600\n\tc 682750:6900000:2:0:0:0:0\n/\nend\nservices\n"
        "283d:00c00000:03fb:0001:25:0:0\nDas Erste HD\np:ARD\n"
        "2ee3:00c00000:0441:0001:1:0:0\nRTL\np:CBC,C:1837,C:0000\n"
        "0001:0e080000:0001:0002:2:0:0\nS\xC3\xBC"
        "d\np:\n"
        "0002:ffff0000:0441:0085:1:0:0\n133-1089-2\np:\n"
        "0003:eeee0000:0101:2114:25:0:0\nT2\np:\n"
        "0004:ffff0000:0801:0600:1:0:0\nZiggo\np:\nend\n";
    std::string const expected =
        "26 Das Erste HD/ARD S19.2E 11362000 HHC23M5S1 22000 tv 1-1019-10301\n"
        "29 RTL/CBC S19.2E 12188000 VVC34M2S0 27500 tv encrypted 1-1089-12003\n"
        "32 Süd/ S0.8W 12515000 RRM2S0 22000 radio 2-1-1\n"
        "35 133-1089-2/ C 338000 M256 6900 tv 133-1089-2\n"
        "38 T2/ T 474000 B8P7S1 0 tv 8468-257-3\n"
        "41 Ziggo/ C 682750  6900 tv 1536-2049-4\n";
    for (char const* version : {"3", "4"}) {
        std::string text =
            summary(parsed(parseLamedb, "eDVB services /" + std::string(version) + "/\n" + older));
        text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
        EXPECT_EQ(text, expected +
                            "21: a transponder that cannot be read: \n"
                            "44: a service type that is no TV or radio: type 12: Data\n"
                            "47: no transponder of the list carries it: Lost\n"
                            "50: a service that cannot be read: foul\n");
    }
    auto const list = parsed(parseLamedb, std::string("eDVB services /4/\n") + older);
    EXPECT_EQ(formatLamedb(list.channels), rewritten);
    std::string fifth =
        summary(parsed(parseLamedb,
                       "eDVB services /5/\n# Transponders\n"
                       "t:00c00000:03fb:0001,s:11362000:22000000:0:2:192:2:0:1:2:0:2\n"
                       "t:eeee0000:0101:2114,t:474000000:0:5:5:3:2:4:4:2:0:1:7\n"
                       "s:283d:00c00000:03fb:0001:25:0,\"Das Erste HD\",p:ARD\n"
                       "s:0003:eeee0000:0101:2114:31:0,\"T2, \"again\"\",p:\n"
                       "s:0003:eeee"));
    fifth.erase(std::remove(fifth.begin(), fifth.end(), '\0'), fifth.end());
    EXPECT_EQ(fifth,
              "5 Das Erste HD/ARD S19.2E 11362000 HHC23M5S1 22000 tv 1-1019-10301\n"
              "6 T2, \"again\"/ T 474000 B8P7S1 0 tv 8468-257-3\n"
              "7: the file ends in the midst of a line: \n");
}

TEST(Bouquet, NamesServicesByTheirIds) {
    auto const list = parsed(parseBouquet,
                             "#NAME Favourites (TV)\r\n"
                             "#SERVICE 1:64:1:0:0:0:0:0:0:0::-- News --\n#DESCRIPTION -- News --\n"
                             "#SERVICE 1:0:19:283D:3FB:1:C02CE5:0:0:0:\n#DESCRIPTION Das Erste HD\n"
                             "#SERVICE: 1:0:2:1:1:2:E080000:0:0:0::Radio\n"
                             "#SERVICE 1:0:1:2:441:85:FFFF0000:0:0:0:\n"
                             "#SERVICE 4097:0:1:0:0:0:0:0:0:0:stream\n");
    std::string text = summary(list);
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
    EXPECT_EQ(text,
              "4 Das Erste HD/ S19.2E 0  0 tv 1-1019-10301\n"
              "6 Radio/ S0.8W 0  0 radio 2-1-1\n"
              "7 133-1089-2/ C 0  0 tv 133-1089-2\n"
              "8: no DVB service: 4097:0:1:0:0:0:0:0:0:0:stream\n");
    EXPECT_THAT(list.groups, testing::ElementsAre("Favourites (TV)"));
    char const* const entries[] = {
        "#SERVICE 1:0:19:283D:3FB:1:C02CE5:0:0:0:", "#SERVICE 1:0:2:1:1:2:E080000:0:0:0:",
        "#SERVICE 1:0:1:2:441:85:FFFF0000:0:0:0:"};
    for (std::size_t i = 0; i < std::size(entries); ++i)
        EXPECT_EQ(formatBouquetEntry(list.channels[i]), entries[i]);
}

}  // namespace
