// The two views: tuning URIs and the flat rows of list items.
#include "support/test_database.h"

namespace {

using channel_database::Delivery;
using channel_database::Service;

class ServiceViews : public TestDatabase {
  protected:
    void SetUp() override {
        TestDatabase::SetUp();
        for (int time = 0; time < 2; ++time)  // the second time changes nothing
            EXPECT_EQ(dbaccess::initViews(database().connection()), SQLITE_OK);
    }
    std::string uri(Service const& service) {
        return database().value("SELECT Uri FROM UriView WHERE Pid = " +
                                std::to_string(service.id()));
    }
    std::string onlyItem(std::string const& columns) {
        return joined(database().rows("SELECT " + columns + " FROM FavoriteItemView").at(0));
    }
};

// The URI of each kind behind "rec://plain/": {Column} is a column's value, [...] is left out when
// its column is 0.
#define IDENTITY "[&slotconfig={CiSlotConfig}]&onid={Oid}&sid={Sid}&tsid={Tid}"
// clang-format off
std::pair<Delivery, char const*> const kUris[] = {
    {Delivery::Analog, "analog?frequency={Frequency}&brdstd={BroadcastSystem}&colstd={ColorSystem}"
     "&frontend=1"},
    {Delivery::DvbT, "dvbt?frontend={Frontend}&dvbtpriority={HierarchicalPriority}"
     "&frequency={Frequency}[&bandwidth={Bandwidth}][&inversion={SpectrumInversion}]"
     "[&modulation={Constellation}]" IDENTITY "&nid={NITId}"},
    {Delivery::DvbT2, "dvbt?frontend={Frontend}&plpid={PlpId}&groupid=0&frequency={Frequency}"
     "[&bandwidth={Bandwidth}][&inversion={SpectrumInversion}][&modulation={Constellation}]"
     IDENTITY "&nid={NITId}"},
    {Delivery::DvbC, "dvbc?frontend={Frontend}&frequency={Frequency}[&symbolrate={SymbolRate}]"
     "[&inversion={SpectrumInversion}][&modulation={Modulation}]" IDENTITY "&nid={NITId}"},
    {Delivery::DvbC2, "dvbc?frontend={Frontend}&plpid={PlpId}&datasliceid={DataSliceId}"
     "&frequency={Frequency}[&bandwidth={Bandwidth}][&inversion={SpectrumInversion}]"
     IDENTITY "&nid={NITId}"},
    {Delivery::DvbS, "dvbs?frontend={Frontend}&satid={Satellite}&coderate={CodeRate}"
     "&frequency={Frequency}[&symbolrate={SymbolRate}][&inversion={SpectrumInversion}]"
     "[&modulation={Modulation}][&polarization={Polarization}][&band={Band}]"
     IDENTITY "&nid={NITId}"},
    {Delivery::DvbS2, "dvbs?frontend={Frontend}&satid={Satellite}&modcod={ModulationCoding}"
     "&frequency={Frequency}[&symbolrate={SymbolRate}][&inversion={SpectrumInversion}]"
     "[&polarization={Polarization}][&band={Band}]" IDENTITY "&nid={NITId}"},
    {Delivery::Ip, "dvbip?url={NetworkUrl}&frontend=5" IDENTITY},
};
// clang-format on

// The pattern with values filled in: column number k of it has the value `base` + k, or 0 with an
// optional one when `base` is 0.
std::string filled(std::string const& pattern, Service& service, int base) {
    std::string text;
    std::size_t option = std::string::npos;  // where the option began
    for (std::size_t at = 0, number = 1; at < pattern.size(); ++at) {
        bool const isOptional = option != std::string::npos;
        if (pattern[at] == '[') {
            option = text.size();
        } else if (pattern[at] == ']') {
            text.resize(base == 0 ? option : text.size());
            option = std::string::npos;
        } else if (pattern[at] == '{') {
            auto const end = pattern.find('}', at);
            auto const value = base == 0 && isOptional ? 0 : base + static_cast<int>(number++);
            service.set(pattern.substr(at + 1, end - at - 1), value);
            text += std::to_string(value);
            at = end;
        } else {
            text += pattern[at];
        }
    }
    return text;
}

TEST_F(ServiceViews, UriOfEveryDeliveryKind) {
    for (auto const& [delivery, parameters] : kUris) {
        std::string const pattern = std::string("rec://plain/") + parameters;
        auto service = database().service(delivery, "name");
        std::string const least = filled(pattern, service, 0);
        EXPECT_EQ(uri(service), least);
        std::string const whole = filled(pattern, service, 100);
        EXPECT_EQ(uri(service), whole);
        std::string const scrambled = delivery == Delivery::Analog ? whole : whole + "&encrypted=1";
        EXPECT_EQ(uri(service.encrypted(5)), scrambled);
        EXPECT_EQ(uri(service.encrypted(nullptr)), scrambled);
        for (std::size_t at = 0; (at = pattern.find('{', at)) != std::string::npos; ++at) {
            std::string const column = pattern.substr(at + 1, pattern.find('}', at) - at - 1);
            filled(pattern, service, 100);
            EXPECT_EQ(uri(service.set(column, nullptr)), "NULL") << column;
        }
    }
}

TEST_F(ServiceViews, UriOfOtherKindsAndValues) {
    EXPECT_THAT(uri(database().dvbt2("T2").plpId(0x30102)),
                testing::HasSubstr("&plpid=2&groupid=1&"));
    EXPECT_THAT(uri(database().dvbc2("C2").plpId(258)), testing::HasSubstr("&plpid=258&"));
    EXPECT_EQ(uri(database().uri("stored", " http://x?a=1 ")), " http://x?a=1 ");
    EXPECT_EQ(uri(database().uri("null", "").uri(nullptr)), "NULL");
    EXPECT_EQ(uri(database().uri("unknown", "own").set("Type", 9)), "about:blank");
    EXPECT_EQ(uri(database().dvbs("no tuner").without("Tuner")), "NULL");
    EXPECT_EQ(uri(database().ip("no delivery row").uri("own").without("DvbService")), "NULL");
}

TEST_F(ServiceViews, NamesOfAnItem) {
    auto service = database().dvbt("");
    database().put(database().list("User.tvFAV1"), service, 1);
    // clang-format off
    char const* const cases[][4] = {
        {"N", "", "", "N|N"}, {"N", "S", "", "S|S"}, {"N", "S", "E", "S|E"},
        {"hdmi1", "", "", "hdmi1|HDMI 1"}, {"hdmi2", "S", "", "S|HDMI 2"},
        {"hdmi3", "", "", "hdmi3|HDMI 3"}, {"hdmi3", "", "E", "hdmi3|E"},
        {"hdmi4", "", "", "hdmi4|HDMI 4"}, {"AV1", "", "", "AV1|AV"},
        {"ANALOG", "", "", "ANALOG|VIDEO"}, {"Hdmi1", "", "", "Hdmi1|Hdmi1"}};
    // clang-format on
    for (auto const& [name, shortName, serviceName, internalExternal] : cases) {
        service.name(name).shortName(shortName).serviceName(serviceName);
        EXPECT_EQ(onlyItem("InternalName, ExternalName"), internalExternal);
    }
    service.name("N").shortName(nullptr).serviceName(nullptr);
    EXPECT_EQ(onlyItem("InternalName, ExternalName"), "N|N");
}

TEST_F(ServiceViews, OtherColumnsOfAnItem) {
    auto origin = database().list("servicelist://tamun.dvbt").networkId(77);
    auto list = database().list("User.tvFAV1").networkId(88);
    auto service = database().dvbt("N").visible(3).selectable(4).nitId(5).tunerUuid("t");
    service.set("TtxPreviewPage", 100).set("TtxSubtitlePage", 150).set("TtxCharEnc", 6);
    database().put(list, service, 9).visible(1).selectable(2).original(origin).deleted();
    database().lcn(service, origin, 12);
    char const* const columns =
        "NetworkId, FIVisible, FISelectable, SVisible, SSelectable, TtxPreviewPage,"
        " TtxSubtitlePage, TtxCharEnc, NITId, TunerUuid, Lcn, FavoriteId, isDeleted, Type";
    EXPECT_EQ(onlyItem(columns), "77|1|2|3|4|100|150|6|5|t|12|2|1|2");
    database().run(
        "INSERT INTO AnalogService (ServiceId, TtxPreviewPage, TtxSubtitlePage,"
        " TtxCharEnc) VALUES (1, 101, 151, 7)");
    service.set("Type", 1);
    EXPECT_EQ(onlyItem(columns), "77|1|2|3|4|101|151|7|5|t|12|2|1|1");
    service.without("DvbService");
    EXPECT_EQ(database().rows("SELECT 1 FROM FavoriteItemView").size(), 1U);
    service.without("AnalogService");
    database().run("DELETE FROM AnalogService");
    EXPECT_EQ(database().rows("SELECT 1 FROM FavoriteItemView").size(), 0U);
}

int denyView(void* name, int action, char const* view, char const*, char const*, char const*) {
    bool const isDenied =
        action == SQLITE_CREATE_TEMP_VIEW && view == *static_cast<std::string const*>(name);
    return isDenied ? SQLITE_DENY : SQLITE_OK;
}

TEST_F(ServiceViews, AViewThatCannotBeMadeIsReported) {
    std::string denied = "UriView";
    for (char const* count : {"0", "1"}) {  // without the first view the second is not tried
        channel_database::ChannelDatabase other(":memory:");
        sqlite3_set_authorizer(other.connection(), denyView, &denied);
        EXPECT_EQ(dbaccess::initViews(other.connection()), SQLITE_AUTH);
        EXPECT_EQ(other.value("SELECT count(*) FROM sqlite_temp_master"), count);
        denied = "FavoriteItemView";
    }
    EXPECT_THAT(texts(),
                testing::ElementsAre("SQL ERROR res:23.",
                                     testing::StartsWith("SQL Error res:23,sql:CREATE TEMP VIEW IF "
                                                         "NOT EXISTS FavoriteItemView AS ")));
}

}  // namespace
