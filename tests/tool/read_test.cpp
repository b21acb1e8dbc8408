// folders, services, attributes, driver and the lookups.
#include "tool_process.h"

#include <sstream>

using testing::HasSubstr;

namespace {

TEST_F(ToolTest, ShowsTheListsAsTheSetOrdersThem) {
    EXPECT_EQ(output("folders"),
              "Name   FAV   Kind      Network    Tag  Capability  UUID\n"
              "-----  ----  --------  -------  -----  ----------  -------\n"
              "Astra        delivery        0      0          50  u-astra\n"
              "Mine   FAV1  user TV         0      0          63  u-fav1\n"
              "FAV2   FAV2  user TV         0      0          63  u-fav2\n"
              "FAV3   FAV3  user TV         0      0          63  u-fav3\n"
              "FAV4   FAV4  user TV         0  65535          63  u-fav4\n"
              "#3051        inputs          0      0          63  u-av\n");
}

TEST_F(ToolTest, ShowsServicesWithAlignedNamesAndStatesInWords) {
    change(
        "UPDATE FavoriteItem SET isDeleted = 1 WHERE FavoriteId = 1 AND ServiceId = 2;"
        "UPDATE Service SET Name = 'Bl' || char(27) || 'nk' || x'FF' WHERE Pid = 6");
    EXPECT_EQ(
        output("services all"),
        "No  LCN  Name        Kind   Delivery     ONID  TSID    SID  Id  FAV        State\n"
        "--  ---  ----------  -----  -----------  ----  ----  -----  --  ---------  ---------\n"
        " 1  101  Das Erste   TV     satellite       1  1019  10301   1  FAV1\n"
        " 2       ZDF HD      TV     satellite       1  1011  11110   2  FAV1       deleted\n"
        " 3       VOX         TV     satellite       1  1089  12060   3  FAV1 FAV2  scrambled\n"
        " 4       テレビ東京  TV     terrestrial     2     7      9   4             locked\n"
        " 5       Jazz        radio  cable           3     8     10   5  FAV1       hidden\n"
        " 6       Bl\\x1bnk\xEF\xBF\xBD   TV     cable           4     8  11110   6\n");
}

TEST_F(ToolTest, PrintsJsonAndRawRows) {
    output("services --raw FAV1");
    EXPECT_EQ(
        out.substr(0, out.find('\n')),
        "1\tDas Erste\t4\t270664256\t4\t10301\tservice-1\t1019\t1\t1\t1\t1\t101\t1\t27500\t1");
    const struct {
        char const* arguments;
        std::vector<char const*> parts;
    } cases[] = {
        {"folders --json", {"\"name\": \"Mine\"", "\"fav\": \"FAV1\"", "\"updateTag\": 65535"}},
        {"folders --raw",
         {"Mine\tu-fav1\t5\t\t63\t0\tFAV1\t0\n", "#3051\tu-av\t32\t\t63\t0\t\t0\n"}},
        {"services u-fav1 --json",
         {"\"number\": 3", "\"scrambled\"", "\"frequency\": 12604000", "\"lcn\": null",
          "\"kind\": \"radio\"", "\"favourites\": [\n      \"FAV1\",\n      \"FAV2\"\n    ]"}},
        {"attributes FAV4 --json",
         {"\"attributes\": 0", "\"folderWord\": 5", "\"capability\": 63"}},
        {"biss VOX --json", {"\"bissKey\": \"1234567890AB\"", "\"uuid\": \"service-3\""}},
        {"anchor --json", {"\"uuid\": \"service-1\""}},
        {"scramble --json", {"\"scrambled\": true"}},
    };
    for (auto const& c : cases) {
        output(c.arguments);
        for (char const* part : c.parts)
            EXPECT_THAT(out, HasSubstr(part)) << c.arguments;
    }
}

TEST_F(ToolTest, AnswersTheLookups) {
    Invocation const runs[] = {
        {"attributes Astra", 0,
         "Astra         544  0x220  5 9     0x2200040          50  media type,", nullptr},
        {"anchor", 0, "service-1\n", ""},
        {"scramble", 0, "yes:", ""},
        {"biss service-3", 0, "1234567890AB\n", nullptr},
        {"biss id:3", 0, "1234567890AB\n", nullptr},
        {"biss 1", 1, nullptr, "no BISS key is stored with service service-1"},
        {"driver u-fav1 u-all", 0, "[item 1:col 0]:Mine [item 1:col 1]:u-fav1", nullptr},
        {"driver", 0, "argc=1\nend\n", nullptr},
        {"services --trace 0xda:1 FAV1", 0, "Jazz", "get_dbservices(): called,favoriteUuId:u-fav1"},
    };
    for (Invocation const& each : runs)
        expect(each);
    change("DELETE FROM FavoriteItem WHERE FavoriteId = 21");
    expect({"anchor", 1, nullptr, "no list of Astra 19.2E holds an anchor service"});
    expect({"scramble", 1, nullptr, "no list of Astra 19.2E holds an anchor service"});
}

TEST_F(ToolTest, NamesAListInEveryWayThatIsUnique) {
    for (char const* name : {"u-fav1", "FAV1", "Mine"})
        expect({(std::string("services ") + name).c_str(), 0, "Jazz", nullptr});
    for (char const* name : {"u-all", "'$all'", "all"})
        expect({(std::string("services ") + name).c_str(), 0, "テレビ東京", nullptr});
    expect({"services av", 0, "1       HDMI 1  HDMI", nullptr});
    change(
        "UPDATE FavoriteList SET Name = 'all' WHERE Pid = 12;"
        "UPDATE FavoriteList SET Uuid = '' WHERE Pid = 13;"
        "UPDATE FavoriteList SET Uuid = 'FAV1' WHERE Pid = 14");
    expect({"services all", 1, nullptr,
            "several lists are called 'all', name one by its uuid: u-all, u-fav2"});
    expect({"services ''", 1, nullptr, "no list has the uuid or name ''"});
    expect({"services FAV3", 1, nullptr, "the list 'FAV3' has no uuid, so no request can name it"});
    expect({"attributes FAV1", 0, "FAV4", nullptr});
}

// Whatever a column holds, a command ends with an exit code of its own, and what keeps a list from
// being read is a finding of the check.
TEST_F(ToolTest, SurvivesAnythingInAnyColumn) {
    std::string const before = content("set.db");
    char const* const columns =
        "SELECT m.name || '.' || c.name FROM sqlite_master m, pragma_table_info(m.name) c"
        " WHERE m.type = 'table' AND c.pk = 0";
    std::istringstream names(rows(columns));
    for (std::string name; std::getline(names, name, ';');) {
        auto const dot = name.find('.');
        for (char const* value : {"NULL", "'x'"}) {
            write("set.db", before);
            change("UPDATE " + name.substr(0, dot) + " SET " + name.substr(dot + 1) + " = " +
                   value);
            SCOPED_TRACE(name + " = " + value);
            int const check = run("check --db set.db");
            EXPECT_THAT(check, testing::AnyOf(0, 1)) << err;
            for (char const* command :
                 {"folders", "services u-all", "edit u-fav1 move id:5 to 1 --dry-run"}) {
                int const code = run(std::string(command) + " --db set.db");
                EXPECT_THAT(code, testing::AnyOf(0, 1)) << command << err;
                EXPECT_LE(code, check) << command << " fails, but check finds nothing: " << err;
            }
        }
    }
}

TEST_F(ToolTest, ReadsOttPositionsAndCreatesNoDatabaseForThem) {
    expect({"ott", 1, nullptr, "there is no OTT database"});
    output("edit FAV1 --renumber");
    EXPECT_FALSE(std::filesystem::exists(folder / "zentova_DB_V1.3.db"));
    ott({4, 2});
    expect({"ott", 0, "FAV1  4 2\nFAV2\n", nullptr});
    expect({"ott --json", 0, "\"FAV4\": []", nullptr});
}

}  // namespace
