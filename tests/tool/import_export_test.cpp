// import, export and the way of favourites from one scan to the next.
#include "tool_process.h"

using testing::HasSubstr;

namespace {

constexpr char kServices[] =
    "SELECT Name, MediaType, Encrypted, (SELECT count(*) FROM FavoriteItem WHERE FavoriteId = 1"
    " AND ServiceId = Pid) FROM Service ORDER BY Pid";

TEST_F(ToolTest, ImportsAChannelListAndNamesSkippedLines) {
    write("list", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\nfoul\n");
    EXPECT_EQ(run("import list new.db"), 0);
    EXPECT_EQ(out, "new.db: 1 channels, 0 groups, 1 lines skipped\n");
    EXPECT_EQ(err, "list:2: skipped: a channel has 9 to 13 fields, this line 1\n");
    EXPECT_EQ(rows("SELECT Name FROM Service WHERE Type = 3", "new.db"), "A");
    EXPECT_EQ(run("import list new.db"), 1);
    EXPECT_THAT(err, HasSubstr("new.db exists; --force replaces it"));
    EXPECT_EQ(run("import missing new.db --force"), 1);
    EXPECT_THAT(err, HasSubstr("cannot read missing: No such file"));
    write("list", "foul\n");
    EXPECT_EQ(run("import list new.db --force"), 1);
    EXPECT_THAT(err, HasSubstr("the list holds no channel"));
    EXPECT_EQ(rows("SELECT Name FROM Service WHERE Type = 3", "new.db"), "A");
}

// What the database keeps of a channel comes back: the same tuning URIs, names and flags.
TEST_F(ToolTest, ExportsWhatAnImportReads) {
    ASSERT_EQ(run("import " SAMPLE_CHANNELS " first.db"), 0) << err;
    ASSERT_EQ(run("export all --db first.db"), 0) << err;
    write("list", out);
    ASSERT_EQ(run("import list second.db"), 0) << err;
    EXPECT_THAT(out, HasSubstr("191 channels, 0 groups, 0 lines skipped"));
    EXPECT_EQ(rows(kServices, "first.db"), rows(kServices, "second.db"));
    std::string services[2];
    for (int i : {0, 1}) {
        run("services all --json --db " + std::string(i == 0 ? "first.db" : "second.db") +
            " | grep -E '\"(number|name|frequency|satellite|symbolRate|polarization|.*id)\":'");
        services[i] = content("out");
    }
    EXPECT_EQ(services[0], services[1]);
}

TEST_F(ToolTest, WritesGroupsGapsAndMarksOfAList) {
    change(
        "UPDATE Service SET Name = 'A, B: C' WHERE Pid = 1;"
        "UPDATE Service SET Visible = 1 WHERE Pid = 5");
    EXPECT_EQ(output("export FAV1 FAV2 av"),
              ":FAV1\n"
              "A, B| C,:12604000:HC34M2S0:S19.2E:27500:8191:0:0:0:10301:1:1019:0\n"
              "ZDF HD:11493750:HC23M5S1:S19.2E:22000:8191:0:0:0:11110:1:1011:0\n"
              "VOX:11953500:HC34M2S0:S19.2E:27500:8191:0:0:FFFF:12060:1:1089:0\n"
              ":@5\n"
              "Jazz:394000:M256:C:6900:0:0:0:0:10:3:8:0\n"
              ":FAV2\n"
              ":$av\n");
    EXPECT_THAT(err, HasSubstr("FAV2: left out 1 services that are deleted or no DVB service"));
}

TEST_F(ToolTest, FindsFavouritesAgainInANewScan) {
    write("favourites",
          ":FAV1\n"
          "Renamed:12604:HC34M2S0:S19.2E:27500:1:1:0:0:10301:1:1019:0\n"
          "Gone:12604:HC34M2S0:S19.2E:27500:1:1:0:0:4711:1:1019:0\n"
          "ZDF HD:1:M64:C:6900:1:1:0:0:11110:4:8:0\n"
          "Twice:12604:HC34M2S0:S19.2E:27500:1:1:0:0:10301:1:1019:0\n"
          ":FAV3\n"
          "Jazz:394:M256:C:6900:0:0:0:0:10:3:8:0\n");
    ott({2});
    std::string const before = content("set.db");
    expect({"import --favourites favourites --dry-run", 0, "FAV1  added                3  ZDF HD",
            "FAV1: the database has no service for Gone (line 3)"});
    EXPECT_EQ(content("set.db"), before);
    expect({"import --favourites favourites", 0,
            "FAV1: 2 services, 1 not found\nFAV3: 1 services, 0", "Gone"});
    EXPECT_EQ(fav(1), "1 1;3 6");
    EXPECT_EQ(fav(2), "1 3 deleted") << "lists that the file does not name stay";
    EXPECT_EQ(fav(3), "1 5");
    expect({"import --favourites favourites --list FAV4 set.db", 0, "FAV4: 3 services", "Gone"});
    EXPECT_EQ(fav(4), "1 1;2 6;3 5");
    write("list", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\n");
    write("favourites", ":Sport\nJazz:394:M256:C:6900:0:0:0:0:10:3:8:0\n");
    expect({"import --favourites favourites", 1, nullptr, "no list has the uuid or name 'Sport'"});
    expect({"import --favourites list", 2, nullptr, "A stands in no group; --list names"});
    expect({"import --favourites favourites --list Astra", 2, nullptr, "is none of FAV1 to FAV4"});
}

// Without ids the service id alone says too little.
TEST_F(ToolTest, ChoosesAmongServicesOfOneTriplet) {
    change("UPDATE DvbService SET Oid = 0, Tid = 0, Sid = 9 WHERE ServiceId IN (1, 4, 5)");
    write("favourites",
          ":FAV1\n"
          "Jazz:1:M64:C:6900:1:1:0:0:9:0:0:0\n"
          "Moved:506:M64:T:0:1:1:0:0:9:0:0:0\n"
          "Nobody:777:M64:T:0:1:1:0:0:9:0:0:0\n");
    expect({"import --favourites favourites", 0, "FAV1: 2 services, 1 not found", "Nobody"});
    EXPECT_EQ(fav(1), "1 5;2 4");
}

}  // namespace
