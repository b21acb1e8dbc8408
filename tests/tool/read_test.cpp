// folders, services, attributes, driver and the lookups.
#include "tool_process.h"

using testing::HasSubstr;

namespace {

TEST_F(ToolTest, ShowsTheListsAsTheSetOrdersThem) {
    EXPECT_EQ(output("folders"),
              "Name    FAV   Kind          Services  Hidden  Network    Tag  Capability  UUID\n"
              "------  ----  ------------  --------  ------  -------  -----  ----------  -------\n"
              "Astra         delivery             2       0        0      0          50  u-astra\n"
              "Mine    FAV1  user TV              4       0        0      0          63  u-fav1\n"
              "FAV2    FAV2  user TV              1       1        0      0          63  u-fav2\n"
              "FAV3    FAV3  user TV              0       0        0      0          63  u-fav3\n"
              "FAV4    FAV4  user TV              0       0        0  65535          63  u-fav4\n"
              "inputs        inputs               1       0        0      0          63  u-av\n"
              "all           all services         6       0        0      0              u-all\n");
    EXPECT_EQ(output("folders --columns uuid,FLAGS,hidden"),
              "UUID     Flags  Hidden\n"
              "-------  -----  ------\n"
              "u-astra     64       0\n"
              "u-fav1       5       0\n"
              "u-fav2       5       1\n"
              "u-fav3       5       0\n"
              "u-fav4       5       0\n"
              "u-av        32       0\n"
              "u-all       16       0\n");
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
        " 2       ZDF HD      TV     satellite       1  1011  11110   2  FAV1       hidden\n"
        " 3       VOX         TV     satellite       1  1089  12060   3  FAV1 FAV2  scrambled\n"
        " 4       テレビ東京  TV     terrestrial     2     7      9   4             locked\n"
        " 5       Jazz        radio  cable           3     8     10   5  FAV1       invisible\n"
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
        {"services all --match jazz --json --columns name,hd,satellite",
         {"\"name\": \"Jazz\",\n    \"hd\": false,\n    \"satellite\": null\n"}},
        {"find jazz --json", {"\"frequency\": 394000", "\"provider\": \"\""}},
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
    change(
        "UPDATE Service SET Name = char(27) || ']0;x' || char(8238, 8294, 8297, 8203, 8232, 155) ||"
        " 'Jazz' WHERE Pid = 5;"
        "UPDATE FavoriteList SET Name = char(27) || ']0;x' || char(8238) WHERE Pid = 11");
    for (char const* printing : {"driver u-fav1 u-all", "services --trace 0xda:1 FAV1", "list FAV1",
                                 "edit FAV1 -n hide 5"}) {
        output(printing);
        EXPECT_THAT(out + err, HasSubstr("\\x1b]0;x")) << printing;
        for (char const* raw : {"\x1b", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA9",
                                "\xE2\x80\x8B", "\xE2\x80\xA8", "\xC2\x9B"})
            EXPECT_THAT(out + err, testing::Not(HasSubstr(raw))) << printing;
    }
    change("DELETE FROM FavoriteItem WHERE FavoriteId = 21");
    expect({"anchor", 1, nullptr, "no list of Astra 19.2E holds an anchor service"});
    expect({"scramble", 1, nullptr, "no list of Astra 19.2E holds an anchor service"});
}

TEST_F(ToolTest, NamesAListAsAPersonWritesIt) {
    change(
        "UPDATE FavoriteList SET Name = 'all' WHERE Pid = 12;"
        "UPDATE FavoriteList SET Uuid = '' WHERE Pid = 13;"
        "UPDATE FavoriteList SET Uuid = 'FAV1', Name = 'Ärzte im Dienst' WHERE Pid = 14");
    char const* const cases[][2] = {
        {"FAV1", "u-fav1"}, {"u-fav1", "u-fav1"},   {"Mine", "u-fav1"},  {"mINE", "u-fav1"},
        {"fav2", "u-fav2"}, {"all", "u-all"},       {"'$all'", "u-all"}, {"inputs", "u-av"},
        {"av", "u-av"},     {"'ärzte im'", "FAV1"}, {"ASTR", "u-astra"}, {"u-fav2", "u-fav2"}};
    for (auto const& [name, uuid] : cases) {
        output(std::string("attributes --json ") + name);
        EXPECT_THAT(out, HasSubstr("\"uuid\": \"" + std::string(uuid) + "\"")) << name;
    }
    Invocation const refused[] = {
        {"services a", 1, nullptr,
         "several lists are meant by 'a', name one by its uuid: u-all (all)"},
        {"services ''", 1, nullptr, "no list has the uuid or name ''"},
        {"services Asrta", 1, nullptr,
         "no list has the uuid or name 'Asrta'; did you mean 'Astra'?"},
        {"services 'Dienzt'", 1, nullptr, "; did you mean 'Ärzte im Dienst'?"},
        {"services FAV3", 1, nullptr, "the list 'FAV3' has no uuid, so no request can name it"}};
    for (Invocation const& each : refused)
        expect(each);
    change(
        "UPDATE FavoriteList SET Name = 'Old FAV2 and all', Creator = 'User.tv.5' WHERE Pid = 12;"
        "UPDATE FavoriteList SET Uuid = 'u-astra', Name = '日本語テレビ' WHERE Pid = 13;"
        "DELETE FROM FavoriteList WHERE Pid = 1");
    expect({"services FAV2", 1, nullptr, "name 'FAV2'; did you mean 'Old FAV2 and all' or 'FAV1'"});
    expect({"edit all hide VOX", 1, nullptr, "no list has the uuid or name 'all'"});
    expect({"edit FAV1 add VOX", 1, nullptr, "no list of all services that a request can name"});
    expect({"attributes u-astra", 0, "FAV3 ", nullptr});
}

TEST_F(ToolTest, FiltersAndSortsTheServicesOfAList) {
    char const* const cases[][2] = {
        {"--radio", "Jazz"},
        {"--tv --hd", "ZDF HD"},
        {"--free --delivery Satellite --sort name", "Das Erste,ZDF HD"},
        {"--delivery cable --sort triplet", "Jazz,ZDF HD"},
        {"--match zdf", "ZDF HD,ZDF HD"},
        {"--match 東", "テレビ東京"},
        {"--sort number --match s", "Das Erste"},
        {"--hidden", "Jazz"},
    };
    for (auto const& [options, names] : cases) {
        output(std::string("services all --json ") + options);
        std::string found;
        for (auto at = out.find("\"name\": \""); at != std::string::npos;
             at = out.find("\"name\": \"", at + 1))
            found +=
                (found.empty() ? "" : ",") + out.substr(at + 9, out.find('"', at + 9) - at - 9);
        EXPECT_EQ(found, names) << options;
    }
    write("chosen", output("list all --hd --free"));
    output("edit FAV2 --from chosen");
    EXPECT_EQ(fav(2), "2 2");
    expect({"services all --sort size", 2, nullptr, "--sort takes one of number, name, triplet"});
    expect({"services all --raw --tv", 2, nullptr, "--raw prints the rows as the library"});
}

TEST_F(ToolTest, FindsAServiceInEveryList) {
    Invocation const runs[] = {
        {"find vox", 0,
         "VOX   TV    satellite  1-1089-12060   3  all 3, FAV1 3, FAV2 1 (hidden), "
         "Astra 2\n",
         nullptr},
        {"find zdf hd", 0, "1-1011-11110   2  all 2, FAV1 2\n", nullptr},
        {"find id:3 --json", 0,
         "\"list\": \"FAV2\",\n        \"uuid\": \"u-fav2\",\n        \"number\": 1,\n"
         "        \"hidden\": true\n",
         nullptr},
        {"find hdmi", 0, "HDMI 1  HDMI                      7  inputs 1\n", nullptr},
        {"find vox ''", 2, nullptr, "an empty word finds nothing"},
        {"find id:7", 0, "HDMI 1", nullptr},
        {"find 3-8-10", 0, "Jazz", nullptr},
        {"find service-4", 0, "テレビ東京", nullptr},
        {"find --hidden --match o --columns name,lists", 0,
         "VOX   all 3, FAV1 3, FAV2 1 (hidden), Astra 2\n", nullptr},
        {"find zdf --delivery cable", 0, "all 6\n", nullptr},
        {"find --radio --hd", 1, nullptr, "no service fits"},
        {"find", 2, nullptr, "find needs a word, or a filter"},
        {"find zdf --columns nam", 2, nullptr,
         "no column 'nam'; did you mean 'name'?; --columns takes all, or some of name, kind"},
        {"find vox hd", 1, nullptr, "no service has 'vox hd' in its name, id, triplet or uuid"},
    };
    for (Invocation const& each : runs)
        expect(each);
}

// A new scan numbers the services anew: here uuids of others, in part, and keys of none.
TEST_F(ToolTest, ComparesTwoDatabases) {
    output("backup old.db");
    expect({"diff old.db", 0, "No list and no service differs.\n", nullptr});
    change(
        "UPDATE FavoriteItem SET ServiceId = ServiceId + 100;"
        "UPDATE DvbService SET ServiceId = ServiceId + 100;"
        "UPDATE AnalogService SET ServiceId = ServiceId + 100;"
        "UPDATE Service SET Pid = Pid + 100;"
        "UPDATE Service SET Uuid = 'service-4' WHERE Name = 'VOX';"
        "UPDATE Service SET Uuid = 'service-3', Name = 'CNN' WHERE Name = 'テレビ東京';"
        "UPDATE DvbService SET Oid = 9, Tid = 9, Sid = 9 WHERE ServiceId = 104;"
        "UPDATE Service SET Name = 'ARD' WHERE Name = 'Das Erste';"
        "UPDATE DvbService SET Tid = 77 WHERE ServiceId = 105;"
        "UPDATE FavoriteItem SET ChannelNum = 9 WHERE FavoriteId = 11 AND ServiceId = 102;"
        "UPDATE FavoriteItem SET isDeleted = 1 WHERE ServiceId = 101;"
        "UPDATE FavoriteList SET Name = 'New', Uuid = 'u-new' WHERE Pid = 21");
    output("diff old.db set.db");
    for (char const* part :
         {"all    removed             4         テレビ東京    4\n",
          "all    added                      4  CNN         104\n",
          "FAV1   moved               2      9  ZDF HD        2\n",
          "New    added, hidden              1  ARD           1\n",
          "ARD         1-1019-10301  renamed  Das Erste                      ARD\n",
          "CNN         9-9-9         came                                    terrestrial 506000 ",
          "Jazz        3-77-10       retuned  cable 394000 kHz 6900 kBd 3-8  cable 394000 kHz 69",
          "List          came  went  moved  hidden  restored  renamed  retuned\n",
          "FAV1             0     0      1       1         0        1        1\n",
          "Astra (went)     0     2      0       0         0        0        0\n",
          "New (came)       2     0      0       1         0        1        0\n",
          "all lists        1     1      1       1         0        1        1\n"})
        EXPECT_THAT(out, HasSubstr(part));
    ASSERT_EQ(run("diff set.db old.db --json"), 0);
    EXPECT_THAT(out,
                HasSubstr("\"total\": {\n    \"came\": 1,\n    \"went\": 1,\n    \"moved\": 1,"));
    expect(
        {"diff set.db old.db", 2, nullptr, "two databases are compared, and --db names a third"});
    expect({"diff missing.db", 1, nullptr, "there is no database missing.db"});
}

// Without uuids, some alike in all: nothing has changed but the keys.
TEST_F(ToolTest, TellsNothingOfServicesThatShareATriplet) {
    change(
        "UPDATE Service SET Uuid = NULL; UPDATE Service SET Name = 'same' WHERE Pid IN (2, 3);"
        "UPDATE DvbService SET Oid = 1, Tid = 1, Sid = 1 WHERE ServiceId < 5;"
        "UPDATE Tuner SET TunerUuid = ''");
    output("backup old.db");
    change(
        "UPDATE Service SET Pid = Pid + 9; UPDATE FavoriteItem SET ServiceId = ServiceId + 9;"
        "UPDATE DvbService SET ServiceId = ServiceId + 9;"
        "UPDATE AnalogService SET ServiceId = ServiceId + 9");
    expect({"diff old.db", 0, "No list and no service differs.\n", nullptr});
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
