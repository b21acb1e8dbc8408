#include <channel-database/channels_conf.h>

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

using namespace channel_database;
using testing::HasSubstr;

namespace {

// What the importer takes from a channel, on one line.
std::string summary(Channel const& c) {
    std::ostringstream text;
    text << c.name << '/' << c.shortName << '/' << c.provider << ' '
         << static_cast<int>(c.delivery()) << ' ' << c.orbitalPosition() << ' '
         << c.frequencyInKHz() << ' ' << (c.polarization != 0 ? c.polarization : '-') << " M"
         << c.parameter('M') << 'C' << c.parameter('C') << 'B' << c.parameter('B') << 'P'
         << c.parameter('P') << ' ' << c.symbolRate << (c.isRadio() ? " radio" : " tv")
         << (c.isEncrypted() ? " encrypted " : " ") << c.networkId << '-' << c.transportStreamId
         << '-' << c.serviceId << '-' << c.radioId;
    return text.str();
}

TEST(ChannelLine, IsRead) {
    const struct {
        char const* line;
        char const* summary;
    } cases[] = {
        {"Das Erste HD;ARD:11493:HC23M5O35P0S1:S19.2E:22000:5101=27:5102=deu@3;5106:5104:0:10301:1:"
         "1019:0",
         "Das Erste HD//ARD 8 192 11493000 H M5C23B0P0 22000 tv 1-1019-10301-0"},
        {"RTL Television,RTL;CBC:12187:vC34M2S0:S0.8W:27500:163=2:104:105:1837,9C4:12003:1:1089:7",
         "RTL Television/RTL/CBC 4 -8 12187000 V M2C34B0P0 27500 tv encrypted 1-1089-12003-7"},
        {"One, two,12;A;B:12603750:RC999M998:S13E:22000:1+2:0:0:0:1",
         "One, two/12/A;B 4 130 12603750 R M0C0B0P0 22000 radio 0-0-1-0"},
        {"BBC TWO (TV):505833:I0C34D0M16B8T2G32Y0:T:27500:610:611,612:0:2:4228:0:0",
         "BBC TWO (TV)// 2 0 505833 - M16C34B8P0 27500 tv 0-0-4228-0"},
        {"T2 HD:474166670:C23G128M256P7Q16436S1T32X1Y0:T:0:101=27:102:0:0:17472:9018:16515:0",
         "T2 HD// 6 0 474167 - M256C23B0P7 0 tv 9018-16515-17472-0"},
        {"S|MDR:410:M64:C:6900:0:801:0:100:28113:0:0:0",
         "S:MDR// 3 0 410000 - M64C0B0P0 6900 radio encrypted 0-0-28113-0"},
        {"C2:610:B8S1:C:0:101:102:0:0:5:1:2:0", "C2// 7 0 610000 - M0C0B8P0 0 tv 1-2-5-0"},
        {"Nowhere:12188:h:S:27500:163:104:0:12003",
         "Nowhere// 4 0 12188000 H M0C0B0P0 27500 tv 0-0-12003-0"},
        {"Oldest:12188:h:S19.2E:27500:163:104:0:12003",
         "Oldest// 4 192 12188000 H M0C0B0P0 27500 tv 0-0-12003-0"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(summary(parseChannel(c.line)), c.summary) << c.line;
}

TEST(ChannelLine, IsRefusedWithItsReason) {
    const struct {
        char const* line;
        char const* reason;
    } cases[] = {
        {"no channel", "9 to 13 fields, this line 1"},
        {"A:1:h:C:1:1:1:1:0:1:1:1:1:1", "this line 14"},
        {"A:0:M64:C:6900:1:1:0:0:1:1:1:0", "frequency is 0"},
        {"A:99999999999:M64:C:6900:1:1:0:0:1:1:1:0", "frequency '99999999999'"},
        {"A:410:M65:C:6900:1:1:0:0:1:1:1:0", "parameter M cannot be 65"},
        {"A:410:Z1:C:6900:1:1:0:0:1:1:1:0", "parameter Z is not known"},
        {"A:410:M:C:6900:1:1:0:0:1:1:1:0", "parameter M has no value"},
        {"A:410:M64:X:6900:1:1:0:0:1:1:1:0", "source 'X'"},
        {"A:410:h:S19.2:6900:1:1:0:0:1:1:1:0", "source 'S19.2'"},
        {"A:410:h:S200E:6900:1:1:0:0:1:1:1:0", "source 'S200E'"},
        {"A:410:M64:C:6900:x:1:0:0:1:1:1:0", "video pid 'x'"},
        {"A:410:M64:C:6900:1:1:0:G:1:1:1:0", "conditional access 'G'"},
        {"A:410:M64:C:6900:1:1:0:0:65536:1:1:0", "service id '65536'"},
        {"A:410:M64:C:6900:1:1:0:0:1:1::0", "transport stream id ''"},
    };
    for (auto const& c : cases) {
        try {
            parseChannel(c.line);
            ADD_FAILURE() << "read: " << c.line;
        } catch (LineError const& error) {
            EXPECT_THAT(error.what(), HasSubstr(c.reason)) << c.line;
        }
    }
}

TEST(ChannelList, CountsGroupsAndReportsLines) {
    std::string text =
        "\xEF\xBB\xBF"
        "A~# a comment\n:News|now\n\nB~:@20\n#C~foul line\n:@5 Late\nS\xFC"
        "d~Nord\xC3\xB6~:@30\n:Last\nE~";
    for (std::size_t at; (at = text.find('~')) != std::string::npos;)
        text.replace(at, 1, ":410:M64:C:6900:1:1:0:0:1:1:1:0\r\n");
    std::istringstream stream(text);
    auto const list = parseChannelsConf(stream);
    EXPECT_THAT(list.groups, testing::ElementsAre("News:now", "Late", "Last"));
    std::ostringstream channels;
    for (Channel const& c : list.channels)
        channels << c.name << ' ' << c.number << ' ' << c.mark << ' ' << c.group << ' ' << c.line
                 << '\n';
    EXPECT_EQ(channels.str(),
              "A 1 0 -1 1\nB 2 0 0 5\n#C 20 20 0 7\nSüd 21 5 1 10\nNordö 22 0 1 11\nE 30 0 2 14\n");
    ASSERT_EQ(list.rejected.size(), 1U);
    EXPECT_EQ(list.rejected[0].line, 8);
    EXPECT_THAT(list.rejected[0].reason, HasSubstr("this line 1"));
}

TEST(ChannelLine, IsWrittenAsItWasRead) {
    std::ifstream sample(SAMPLE_CHANNELS);
    int lines = 0;
    for (std::string line; std::getline(sample, line);) {
        if (line[0] != ':') {
            ++lines;
            EXPECT_EQ(formatChannel(parseChannel(line)), line);
        }
    }
    EXPECT_GE(lines, 150);
}

}  // namespace
