// check: each way in which a database can be broken is found, with its row and its consequence.
#include "tool_process.h"

using testing::HasSubstr;

namespace {

TEST_F(ToolTest, FindsEachFoulRowAndSaysWhatAViewerSees) {
    const struct {
        char const* sql;
        char const* row;
        char const* viewer;
    } cases[] = {
        {"DROP TABLE Lcn", "Lcn: the table does not exist", "requests that read it give nothing"},
        {"ALTER TABLE Service DROP COLUMN bissKey", "Service: column bissKey does not exist", ""},
        {"ALTER TABLE FavoriteItem ADD COLUMN Encrypted",
         "FavoriteItemView: SQLite refuses the view: ambiguous column name: Encrypted",
         "no list shows a service"},
        {"DROP INDEX ItemByService", "FavoriteItem: no index begins with ServiceId", "take long"},
        {"DELETE FROM FavoriteList WHERE Pid = 14", "FavoriteList: 3 lists are FAV lists, not four",
         "every edit is refused"},
        {"UPDATE FavoriteList SET Creator = 'User.tvFAV5' WHERE Pid = 12",
         "FavoriteList 13: FAV3 is the FAV list in place 2", "mark their services as FAV2"},
        {"UPDATE FavoriteList SET Uuid = 'u-fav1' WHERE Pid = 12",
         "FavoriteList 11, 12: the lists share the uuid 'u-fav1'", "the services of the first"},
        {"UPDATE FavoriteList SET Uuid = NULL WHERE Pid = 21",
         "FavoriteList 21: the list 'Astra' has no uuid", "opens empty"},
        {"UPDATE FavoriteList SET UpdateTag = 65536 WHERE Pid = 12",
         "FavoriteList 12: UpdateTag is 65536, not 0 to 65535", "an edit of FAV2 may not show"},
        {"UPDATE FavoriteList SET UpdateTag = NULL WHERE Pid = 12",
         "FavoriteList 12: UpdateTag is NULL", ""},
        {"UPDATE FavoriteList SET Attributes = 'x' WHERE Pid = 21",
         "FavoriteList 21: Attributes is 'x', no number", "overview of lists lacks Astra"},
        {"DELETE FROM Service WHERE Pid = 2",
         "FavoriteItem 8: names service 2, which does not exist", "Mine lacks number 2"},
        {"UPDATE FavoriteItem SET ServiceId = NULL WHERE Id = 8", "names service NULL",
         "edits of a FAV list pass the entry over"},
        {"UPDATE FavoriteItem SET FavoriteId = 99 WHERE Id = 8",
         "FavoriteItem 8: belongs to list 99, which does not exist", "no list shows the entry"},
        {"UPDATE FavoriteItem SET OriginalFavoriteId = 99 WHERE Id = 8",
         "FavoriteItem 8: comes from list 99, which does not exist", "without a network"},
        {"DELETE FROM DvbService WHERE ServiceId = 4",
         "Service 4: 'テレビ東京' has no row in AnalogService or DvbService",
         "no list shows the service; 1 of them hold it"},
        {"UPDATE FavoriteItem SET ChannelNum = 'x' WHERE Id = 8",
         "FavoriteItem 8: ChannelNum is 'x', no number", "in the wrong place"},
        {"UPDATE FavoriteItem SET ChannelNum = 1 WHERE Id = 8",
         "FavoriteItem 7, 8: share number 1 of Mine", "which one is not certain"},
        {"INSERT INTO FavoriteItem (ServiceId, FavoriteId, OriginalFavoriteId, ChannelNum)"
         " VALUES (3, 11, 11, 9)",
         "name service 3 again in Mine", "shown more than once"},
        {"UPDATE Service SET FavTag3 = 1 WHERE Pid = 1",
         "Service 1: 'Das Erste' has FavTag3 1, but is not in FAV3", "FAV3 does not show"},
        {"UPDATE Service SET FavTag = 0 WHERE Pid = 1",
         "Service 1: 'Das Erste' has FavTag 0, but is in FAV1", "not marked as a favourite"},
        {"UPDATE Service SET Encrypted = NULL WHERE Pid = 3",
         "Service 3: Encrypted is NULL, no number",
         "takes it as 0 for VOX, in $all (number 3), FAV1 (number 3), FAV2 (number 1)"},
        {"UPDATE FavoriteItem SET Selectable = NULL WHERE Id = 8",
         "FavoriteItem 8: Selectable is NULL, no number", "ZDF HD, in FAV1 (number 2)"},
        {"DELETE FROM Tuner WHERE TunerId = (SELECT TunerId FROM DvbService WHERE ServiceId = 4)",
         "Service 4: the tuning URI is null", "is shown, but cannot be tuned, in $all (number 4)"},
        {"UPDATE Service SET Type = 12 WHERE Pid = 2", "Service 2: Type 12 is no kind of delivery",
         "cannot be tuned"},
    };
    std::string const before = content("set.db");
    for (auto const& c : cases) {
        change(c.sql);
        std::string const broken = content("set.db");
        output("check", 1);
        EXPECT_THAT(out, HasSubstr(c.row)) << c.sql;
        EXPECT_THAT(out, HasSubstr(c.viewer)) << c.sql;
        EXPECT_EQ(content("set.db"), broken) << "a check writes nothing";
        write("set.db", before);
    }
}

TEST_F(ToolTest, LeavesSoundAndHarmlessRowsAlone) {
    expect({"check --json", 0, "[]\n", nullptr});
    char const* const harmless[] = {
        "UPDATE Service SET MediaType = NULL, Selectable = NULL, SoundSelection = '' WHERE Pid = 7",
        "UPDATE FavoriteItem SET ChannelNum = 1, isDeleted = 1 WHERE Id = 8",
        "ALTER TABLE DvbSTuner ADD COLUMN Frontend; ALTER TABLE Tuner RENAME COLUMN Frontend TO F;"
        " UPDATE DvbSTuner SET Frontend = 4; ALTER TABLE DvbS2Tuner ADD COLUMN Frontend DEFAULT 8;"
        " ALTER TABLE DvbTTuner ADD COLUMN Frontend DEFAULT 2;"
        " ALTER TABLE DvbT2Tuner ADD COLUMN Frontend; ALTER TABLE DvbC2Tuner ADD COLUMN Frontend;"
        " ALTER TABLE DvbCTuner ADD COLUMN Frontend DEFAULT 3",
    };
    for (char const* sql : harmless) {
        change(sql);
        expect({"check", 0, "No findings.\n", nullptr});
    }
}

TEST_F(ToolTest, CountsFindingsAndShortensLongOnes) {
    change(
        "WITH n(i) AS (SELECT 100 UNION SELECT i + 1 FROM n WHERE i < 129)"
        " INSERT INTO FavoriteItem (ServiceId, FavoriteId, OriginalFavoriteId, ChannelNum)"
        " SELECT i, 11, 11, i FROM n");
    expect(
        {"check", 1, "and 10 more of dangling-item, which --all shows\n30 findings.\n", nullptr});
    expect({"check --all", 1, "lacks number 129\n30 findings.\n", nullptr});
    expect({"check --json", 1, "\"viewer\": \"Mine lacks number 129\"", nullptr});
}

TEST_F(ToolTest, ReportsDamagedFiles) {
    std::string pages = content("set.db");
    pages.replace(4096, 4096, 4096, 'x');  // the page behind the schema's
    write("set.db", pages);
    output("check", 1);
    EXPECT_THAT(out, HasSubstr("lists may end early or hold wrong entries"));
    output("services all", 1);
    EXPECT_THAT(err, HasSubstr("malformed"));
}

}  // namespace
