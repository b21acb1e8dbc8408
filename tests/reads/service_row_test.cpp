// From one raw service row to the snapshot and the result row.
#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <algorithm>
#include <locale>
#include <numeric>
#include <sstream>
#include <stdexcept>

#include "support/test_database.h"

namespace {

// The columns of the service query: those that hold numbers, in the order in which they are
// converted, and all in the order of the query.
std::string const kNumbers =
    "Type,ParentalLock,EpgService,EngineAutoStart,GamingMode,Hdtv,Encrypted,isDeleted,FavTag,"
    "FavTag2,FavTag3,FavTag4,HbbTvEnable,SVisible,FIVisible,FISelectable,MediaType,SSelectable,"
    "SoundSelection,TtxPreviewPage,TtxSubtitlePage,TtxCharEnc,Protected,VolumeCorrection,Pid";
std::string const kOrder =
    "Pid,ChannelNum,InternalName,ExternalName,FIVisible,FISelectable,NetworkId,Uuid,Uri,Encrypted,"
    "MediaType,ParentalLock,SVisible,SSelectable,EpgService,EngineAutoStart,VolumeCorrection,"
    "SoundSelection,GamingMode,Hdtv,TtxPreviewPage,TtxSubtitlePage,TtxCharEnc,Protected,TunerUuid,"
    "isDeleted,FavTag,FavTag2,FavTag3,FavTag4,HbbTvEnable,Type,Lcn,NITId";

std::vector<std::string> split(std::string const& text, char at) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, at);)
        parts.push_back(part);
    return parts;
}

// A TV service of zeros and texts that are their columns' names, changed by "Column=value;...".
ResultRow raw(std::string const& changes = "") {
    ResultRow row = split(kOrder, ',');
    auto const at = [&, columns = row](std::string const& column) -> std::string& {
        return row.at(static_cast<std::size_t>(std::find(columns.begin(), columns.end(), column) -
                                               columns.begin()));
    };
    for (std::string const& column : split(kNumbers, ','))
        at(column) = "0";
    for (std::string const& change : split(changes, ';')) {
        auto const equals = change.find('=');
        at(change.substr(0, equals)) = change.substr(equals + 1);
    }
    return row;
}

// The fields of the result row of raw(changes).
std::string converted(std::string const& changes, std::vector<int> const& fields) {
    m_svfield = fields;
    ResultSet rows;
    EXPECT_EQ(dbaccess::computeService(34, raw(changes), &rows), 0);
    std::string text;
    for (std::string const& cell : *rows.at(0))
        text += "|" + cell;
    return text;
}

using ServiceRow = TestDatabase;

// clang-format off

TEST_F(ServiceRow, AttributeBits) {
    std::tuple<char const*, int, unsigned int> const cases[] = {
        {"", 0x240, 0x20240},                      {"Hdtv=1", 0x244, 0x20244},
        {"Encrypted=1", 0x241, 0x241},             {"Encrypted=-5", 0x241, 0x241},
        {"EpgService=2", 0x248, 0x20248},          {"ParentalLock=1", 0x250, 0x250},
        {"GamingMode=1", 0x260, 0x20260},          {"EngineAutoStart=1", 0x200, 0x20200},
        {"isDeleted=1", 0x40, 0x20040},            {"Protected=1", 0x40240, 0x60240},
        {"FavTag=1", 0x200240, 0x220240},          {"HbbTvEnable=1", 0x400240, 0x420240},
        {"FavTag2=1", 0x800240, 0x820240},         {"FavTag3=1", 0x1000240, 0x1020240},
        {"FavTag4=1", 0x2000240, 0x2020240},       {"Type=1", 0x4000240, 0x4020240},
        {"SVisible=1", 0x10000240, 0x10020240},    {"Type=2", 0x240, 0x20240},
        {"Uri=rec://x?hdtv=1", 0x240, 0x20244},    {"Uri=rec://x?hdtv=11", 0x240, 0x20240},
        {"Uri=x?sid=2&y?hdtv=1&z", 0x240, 0x20244},
        {"Encrypted=1;ParentalLock=1;Uri=x&hdtv=1&", 0x251, 0x255},
    };
    for (auto const& [changes, stored, shown] : cases) {
        EXPECT_EQ(converted(changes, {3}), "|" + std::to_string(shown)) << changes;
        EXPECT_EQ(sv.attributes, stored) << changes;
    }
}

TEST_F(ServiceRow, KindAndFrontendClass) {
    char const* const classes[][2] = {
        {"?frontend=1", "1"}, {"?frontend=2", "2"}, {"?frontend=6", "2"}, {"?frontend=3", "3"},
        {"?frontend=7", "3"}, {"?frontend=4", "4"}, {"?frontend=8", "4"}, {"?frontend=5", "5"},
        {"?frontend=0", "0"}, {"?frontend=9", "0"}, {"?frontend=-1", "0"}, {"?frontend=", "0"},
        {"rec://plain/hdmi?frontend=2", "2"}, {"rec://plain/hdmi", "6"}, {"rec://plain/scart", "7"},
        {"rec://plain/avs", "8"}, {"rec://plain/vga", "9"}, {"rec://plain/spdifin", "10"},
        {"rec://plain/spdifi", "0"}, {"xrec://plain/hdmi", "0"}, {"", "0"}, {"about:blank", "0"}};
    for (auto const& [uri, expected] : classes)
        EXPECT_EQ(converted(std::string("Uri=") + uri, {4}), std::string("|") + expected) << uri;
    for (auto const& [media, kind] : {std::pair("2", "|2"), {"1", "|4"}, {"0", "|4"}})
        EXPECT_EQ(converted(std::string("MediaType=") + media, {21}), kind) << media;
}

TEST_F(ServiceRow, InputSources) {
    char const* const cases[][3] = {
        {"InternalName=hdmi1", "rec://plain/hdmi?id=0", "|6"},
        {"InternalName=hdmi2", "rec://plain/hdmi?id=1", "|6"},
        {"InternalName=hdmi3;Uuid=AVS", "rec://plain/hdmi?id=2", "|6"},
        {"InternalName=hdmi4", "rec://plain/hdmi?id=3", "|6"},
        {"InternalName=AV1;Uuid=AVS", "rec://plain/scart?id=0", "|7"},
        {"InternalName=PC IN;Uuid=AVS", "rec://plain/avs", "|8"},
        {"InternalName=PC IN", "rec://plain/vga", "|9"},
        {"InternalName=ANALOG",
         "rec://plain/analog?frequency=591250&frontend=1&colstd=0&brdstd=0", "|1"},
        {"InternalName=SPDIF IN", "rec://plain/spdifin", "|10"},
        {"InternalName=SCART AV", "rec://plain/scart?id=0", "|7"},
        {"InternalName=COMPONENT", "rec://plain/component", "|0"},
        {"InternalName=hdmi5;Uuid=avs", "Uri", "|0"},
    };
    for (auto const& [changes, locator, frontendClass] : cases) {
        EXPECT_EQ(converted(changes, {4}), frontendClass) << changes;
        EXPECT_EQ(sv.locator, locator);
    }
    // What an input does not need may be null, and its flags come from the list alone.
    EXPECT_EQ(converted("InternalName=hdmi2;MediaType=;SSelectable=;SoundSelection=;"
                        "TtxPreviewPage=;TtxSubtitlePage=;TtxCharEnc=;FIVisible=-1",
                        {21, 24, 25, 27, 28, 29, 35}),
              "|4|1|0|0|0|0|");
}

TEST_F(ServiceRow, EveryFieldIdHasItsText) {
    std::vector<int> ids(48);
    std::iota(ids.begin(), ids.end(), -2);
    m_selectedServiceListId = 1;
    EXPECT_EQ(converted("Pid=-3;ChannelNum=007;ExternalName= Eins ;FIVisible=-1;SVisible=1;"
                        "SSelectable=1;TtxPreviewPage=100;TtxSubtitlePage=-150;TtxCharEnc=4;"
                        "TunerUuid= tuner ;Lcn=012;Uri=\t rec://plain/dvbs?frontend=8&satid=4"
                        "&slotconfig=2&frequency=11493&sid=1&tsid=2&onid=3&symbolrate=22000"
                        "&polarization=1 \n", ids),
              // From -2 to 45; an id without a meaning is empty.
              "||| Eins |1||268567104|4|4|007|Uuid|1|2|3|||||||||||4|||1|0|2|100|-150|4|NetworkId||"
              "012||11493| tuner ||test|||-3|NITId|22000|1||");
    EXPECT_EQ(sv.locator.substr(0, 5) + sv.locator.back(), "rec:/1");  // stripped
    m_selectedServiceListId = 7;
    EXPECT_EQ(converted("", {1, 1}), "|7|8");
    EXPECT_EQ(converted("", {}), "");
    EXPECT_EQ(converted("", {1}), "|9");
}

TEST_F(ServiceRow, TheListsFlagsOverrideTheServices) {
    char const* const cases[][3] = {{"0", "1", "|1"}, {"1", "0", "|0"}, {"1", "-1", "|1"},
                                    {"0", "-1", "|0"}, {"-1", "-7", "|1"}, {"0", "2", "|1"}};
    for (auto const& [service, item, shown] : cases) {
        std::string const own = service, lists = item;
        EXPECT_EQ(converted("SVisible=" + own + ";FIVisible=" + lists, {24, 25}),
                  std::string(shown) + "|0");
        EXPECT_EQ(converted("SSelectable=" + own + ";FISelectable=" + lists, {24, 25}),
                  std::string("|0") + shown);
    }
}

TEST_F(ServiceRow, UriNumbersSaturate) {
    char const* const cases[][2] = {
        {"?sid=0012", "12"}, {"?sid=x", "0"}, {"?sid=", "0"}, {"?sid=7x&", "7"},
        {"?sid=\t +5", "5"}, {"?sid=-5", "-5"}, {"?sid=--5", "0"}, {"?tsid=1&onid=2", ""},
        {"?sid=1&sid=2", "2"}, {"?SID=1", ""}, {"&sid=1?sid=2", "1"}, {"?a?sid=6&", "6"}, {"?sid=3&sidx=4", "3"},
        {"sid=1", ""},
        {"?sid=2147483647", "2147483647"}, {"?sid=2147483648", "2147483647"},
        {"?sid=-2147483648", "-2147483648"}, {"?sid=-2147483649", "-2147483648"},
        {"?sid=99999999999999999999", "2147483647"}};
    for (auto const& [uri, expected] : cases)
        EXPECT_EQ(converted(std::string("Uri=") + uri, {8}), std::string("|") + expected) << uri;
}

TEST_F(ServiceRow, NumberColumnsConvertWholeOrNotAtAll) {
    dbaccess::fetchServiceItem(raw("Uuid=before"));
    for (std::string const& column : split(kNumbers, ',')) {
        for (char const* text : {"", "x", " 1", "1 ", "1.0", "+", "-", "1,000", "0x1", "2147483648",
                                 "-2147483649", "99999999999999999999"}) {
            EXPECT_THROW(dbaccess::fetchServiceItem(raw(column + "=" + text)),
                         boost::bad_lexical_cast) << column << " " << text;
        }
        EXPECT_EQ(sv.uuid, "before");
        for (char const* text : {"+5", "-0", "0000000000005", "2147483647", "-2147483648"})
            EXPECT_NO_THROW(dbaccess::fetchServiceItem(raw("Uuid=before;" + column + "=" + text)));
    }
}

TEST_F(ServiceRow, EveryBadColumnIsNamedInOrderAndTheTraceStandsBehindTheAttributes) {
    ResultRow row = raw("Encrypted=1;InternalName=");
    std::vector<std::string> const numbers = split(kNumbers, ','), columns = split(kOrder, ',');
    for (std::string const& number : numbers) {
        auto const column = std::find(columns.begin(), columns.end(), number) - columns.begin();
        row[static_cast<std::size_t>(column)] += "x";
    }
    try {
        dbaccess::fetchServiceItem(row);
        ADD_FAILURE() << "converted";
    } catch (boost::bad_lexical_cast const& error) {
        EXPECT_TRUE(error.source_type() == typeid(std::string));
        EXPECT_TRUE(error.target_type() == typeid(int));
    }
    std::vector<char*> values;
    for (std::string& text : row)
        values.push_back(text.data());
    ResultSet rows;
    platform::state.messages.clear();
    EXPECT_EQ(dbaccess::service_callback(&rows, 34, values.data(), values.data()), 0);
    EXPECT_EQ(rows.size(), 1U);
    auto const messages = texts();
    ASSERT_EQ(messages.size(), numbers.size());
    for (std::size_t index = 0; index < numbers.size(); ++index)
        EXPECT_THAT(messages[index],
                    testing::HasSubstr("column " + numbers[index] + " holds no number"));
    auto const trace = std::find_if(
        platform::state.messages.begin(), platform::state.messages.end(),
        [](platform::Message const& message) { return message.level == 3000; });
    ASSERT_NE(trace, platform::state.messages.end());
    EXPECT_THAT((trace - 1)->text, testing::HasSubstr("column SVisible"));
    EXPECT_THAT((trace + 1)->text, testing::HasSubstr("column FIVisible"));
    EXPECT_THAT(trace->text, testing::HasSubstr("encrypted:1x,isdelete:0x"));
    EXPECT_EQ(trace->function + " " + (trace + 1)->function, "fetchServiceItem service_callback");
}

TEST_F(ServiceRow, ShortAndMissingRowsAreRefused) {
    ResultSet rows;
    sv.uuid = "before";
    ResultRow const tooShort(33, "0");
    EXPECT_EQ(dbaccess::computeService(33, tooShort, &rows), -1);
    EXPECT_EQ(dbaccess::computeService(35, raw(), &rows), -1);
    EXPECT_EQ(dbaccess::computeService(-1, raw(), &rows), -1);
    EXPECT_THROW(dbaccess::fetchServiceItem(tooShort), std::out_of_range);
    char* values[] = {nullptr};
    EXPECT_EQ(dbaccess::service_callback(&rows, 1, nullptr, values), -1);
    EXPECT_EQ(dbaccess::service_callback(&rows, 1, values, nullptr), -1);
    EXPECT_EQ(dbaccess::service_callback(&rows, 1, values, values), -1);
    EXPECT_THAT(texts(), testing::ElementsAre(
        "svrow.size is wrong 33", "svrow.size is wrong 34", "svrow.size is wrong 34",
        "names or values NULL !!", "names or values NULL !!", "svrow.size is wrong 1",
        "serivce_callback failed!!"));
    EXPECT_EQ(rows.size(), 0U);
    EXPECT_EQ(sv.uuid, "before");
}

struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
};

TEST_F(ServiceRow, GlobalLocaleChangesNothing) {
    auto list = database().list("User.tvFAV1").attributes(1234).updateTag(12345).networkId(61000);
    auto service = database().dvbs2("Eins").frequency(11493750).triplet(1111, 22222, 33333);
    database().put(list, service, 12345);
    m_svfield.insert(m_svfield.end(), {34, 27});
    auto const answers = [] {
        unsigned int attributes = 0;
        dbaccess::getFavriteAttributes("list-1", &attributes);
        return std::to_string(attributes) + " " + joined(dbaccess::get_dbservices("list-1")) + " " +
               joined(dbaccess::select_Folders());
    };
    std::string const classic = answers();
    EXPECT_NE(classic.find("|11493750|"), std::string::npos) << classic;
    auto const before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ(answers(), classic);
    EXPECT_THROW(dbaccess::fetchServiceItem(raw("Hdtv=1.0.0.0")), boost::bad_lexical_cast);
    std::locale::global(before);
}

// clang-format on

}  // namespace
