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
         "takes it as 0 for VOX, in all (number 3), FAV1 (number 3), FAV2 (number 1)"},
        {"UPDATE FavoriteItem SET Selectable = NULL WHERE Id = 8",
         "FavoriteItem 8: Selectable is NULL, no number", "ZDF HD, in FAV1 (number 2)"},
        {"DELETE FROM Tuner WHERE TunerId = (SELECT TunerId FROM DvbService WHERE ServiceId = 4)",
         "Service 4: the tuning URI is null", "is shown, but cannot be tuned, in all (number 4)"},
        {"UPDATE Service SET Type = 12 WHERE Pid = 2", "Service 2: Type 12 is no kind of delivery",
         "cannot be tuned"},
        {"ALTER TABLE Tuner RENAME TO T; CREATE VIEW Tuner AS SELECT * FROM T",
         "Tuner: is a view, not a table", "edits that write it fail"},
        {"ALTER TABLE FavoriteItem ADD COLUMN Extra NOT NULL DEFAULT 1; PRAGMA writable_schema = 1;"
         " UPDATE sqlite_master SET sql = replace(sql, 'Extra NOT NULL DEFAULT 1', 'Extra NOT "
         "NULL')",
         "FavoriteItem: column Extra is NOT NULL, and has no default", "can be added"},
        {"PRAGMA writable_schema = 1; UPDATE sqlite_master SET sql = replace(sql,"
         " 'isDeleted          INTEGER DEFAULT 0', 'isDeleted INTEGER DEFAULT 1')",
         "FavoriteItem: the default of isDeleted is 1, not 0", "hidden at once"},
        {"CREATE TRIGGER t BEFORE INSERT ON FavoriteItem BEGIN SELECT RAISE(ABORT, 'no'); END",
         "FavoriteList 11: an edit of FAV1 in a copy failed: sqlite3_step failed:19", "be edited"},
        {"CREATE TRIGGER t AFTER INSERT ON FavoriteItem BEGIN DELETE FROM FavoriteItem WHERE Id ="
         " new.Id; END",
         "FavoriteList 11: an edit of FAV1 in a copy did not write what it was told", "lost"},
        {"CREATE TABLE UriView (A)", "UriView: is a table of the database", "its own view"},
        {"CREATE INDEX LcnFoul ON Lcn (ServiceId, Lcn)", "LcnFoul: is an index on Lcn", "another"},
        {"INSERT INTO FavoriteList (Pid, Uuid, Name, Creator) VALUES (40, 'x', 'y',"
         " 'tamun.sl2.servicelist$all')",
         "FavoriteList 1, 40: 2 lists are the All list, not one", "not certain"},
        {"DELETE FROM FavoriteList WHERE Pid = 1", "0 lists are the All list", "missing"},
        {"UPDATE FavoriteList SET Creator = NULL WHERE Pid = 21",
         "FavoriteList 21: Creator is NULL", "overview of lists lacks Astra"},
        {"UPDATE FavoriteList SET Name = NULL WHERE Pid = 21", "FavoriteList 21: Name is NULL", ""},
        {"UPDATE FavoriteList SET Name = CAST(x'41ff' AS TEXT) WHERE Pid = 21",
         "FavoriteList 21: Name is no UTF-8", "signs that are none"},
        {"UPDATE FavoriteList SET Name = 'FAV2' WHERE Pid = 11",
         "FavoriteList 11, 12: the lists are called 'FAV2'", "cannot tell them apart"},
        {"UPDATE FavoriteList SET NetworkId = NULL WHERE Pid = 21", "21: NetworkId is NULL", ""},
        {"UPDATE FavoriteList SET MaxChannelNumber = 2 WHERE Pid = 11",
         "FavoriteList 11: MaxChannelNumber is 2, and the highest number 5",
         "SET MaxChannelNumber = 5 WHERE Pid = 11"},
        {"UPDATE FavoriteItem SET ChannelNum = 2147483648 WHERE Id = 8",
         "FavoriteItem 8: ChannelNum is 2147483648, no number of 32 bits", "edits of the list are"},
        {"UPDATE FavoriteItem SET ChannelNum = 0 WHERE Id = 8",
         "FavoriteItem 8: ChannelNum is 0, and numbers begin with 1", "no number keys reach"},
        {"UPDATE Service SET FavTag = 2 WHERE Pid = 1", "has FavTag 2, not 0 or 1", ""},
        {"UPDATE Service SET Uuid = '' WHERE Pid = 2", "Service 2: 'ZDF HD' has no uuid", ""},
        {"UPDATE Service SET Uuid = 'service-1' WHERE Pid = 2",
         "Service 1, 2: share the uuid 'service-1'", "may mean the other"},
        {"UPDATE Service SET Name = 'A' || char(27) WHERE Pid = 2",
         "Service 2: its name holds control bytes", "signs that are none"},
        {"UPDATE Service SET Name = 'A' || char(0) WHERE Pid = 2", "2: its name holds a NUL", ""},
        {"UPDATE Service SET Name = '' WHERE Pid = 2", "Service 2: its name is empty", ""},
        {"DELETE FROM FavoriteItem WHERE ServiceId = 4", "'テレビ東京' stands in no list", ""},
        {"DELETE FROM FavoriteItem WHERE ServiceId = 3 AND FavoriteId = 1",
         "Service 3: 'VOX' is not in the All list", "lacks it"},
        {"UPDATE DvbService SET Sid = 65536 WHERE ServiceId = 2",
         "Service 2: 'ZDF HD' has the triplet 1, 1011, 65536, and ids have 16 bits", "not found"},
        {"UPDATE DvbService SET Oid = 1, Tid = 1011, Sid = 11110, TunerId = (SELECT TunerId FROM"
         " DvbService WHERE ServiceId = 2) WHERE ServiceId = 3",
         "Service 2, 3: have the triplet 1, 1011, 11110 on one transponder", "same programme"},
        {"UPDATE DvbCTuner SET Frequency = 0", "Frequency is 0, no frequency in kHz", "Jazz"},
        {"UPDATE DvbS2Tuner SET Polarization = 9", "DvbS2Tuner 2: Satellite is 4, Polarization 9",
         ""},
        {"UPDATE DvbSTuner SET Satellite = 'x'", "Satellite is 'x'", "cannot be tuned"},
        {"UPDATE Tuner SET Frontend = 12 WHERE TunerId = 1", "Tuner 1: Frontend is 12", ""},
        {"UPDATE Service SET Type = 0, Uri = 'nowhere' WHERE Pid = 2",
         "Service 2: Uri is 'nowhere', no tuning URI", "cannot be tuned"},
        {"INSERT INTO Lcn VALUES (99, 21, 1)", "Lcn of service 99: 1 rows name a service or list",
         ""},
        {"UPDATE Lcn SET Lcn = 'x'", "Lcn of service 1: Lcn is 'x', no channel number", ""},
        {"INSERT INTO Lcn VALUES (1, 12, 7)",
         "Lcn of service 1: 2 rows give it the numbers 7 to 101", "the first"},
        {"UPDATE Tuner SET NITId = 70000 WHERE TunerId = 1", "Tuner 1: NITId is 70000", "network"},
        {"UPDATE FavoriteItem SET Id = 4294967304 WHERE Id = 8",
         "FavoriteItem 4294967304: its key is not 1 to 2147483647", "another row"},
        {"PRAGMA writable_schema = 1; UPDATE sqlite_master SET sql = replace(sql,"
         " 'Visible            INTEGER DEFAULT -1', 'Visible INTEGER DEFAULT 0')",
         "FavoriteItem: the default of Visible is 0, not -1", "flag of their service"},
        {"CREATE TRIGGER t AFTER UPDATE ON Service BEGIN UPDATE Service SET FavTag = 0; END",
         "FavoriteList 11: an edit of FAV1 in a copy did not mark its services", "not marked"},
        {"CREATE TRIGGER t BEFORE DELETE ON FavoriteItem BEGIN SELECT RAISE(IGNORE); END",
         "FavoriteList 11: an edit that empties FAV1 in a copy left entries", "stay"},
        {"CREATE TRIGGER t BEFORE UPDATE ON FavoriteList BEGIN SELECT RAISE(ABORT, 'no'); END",
         "FavoriteList 11: an edit of FAV1 in a copy left its UpdateTag", "do not show"},
        {"CREATE TRIGGER t AFTER INSERT ON FavoriteItem BEGIN DELETE FROM FavoriteItem WHERE"
         " FavoriteId = 21; END",
         "FavoriteList 11: an edit of FAV1 in a copy changed other lists", "lose entries"},
        {"UPDATE FavoriteList SET Creator = 'User.tvFAV' || (15 - Pid) WHERE Pid BETWEEN 11 AND 14",
         "FavoriteList 12, 13, 14: the keys and creators of the FAV lists do not ascend", "mark"},
        {"CREATE TRIGGER t BEFORE UPDATE ON FavoriteItem WHEN old.FavoriteId = 11 BEGIN SELECT"
         " RAISE(ABORT, 'no'); END",
         "FavoriteList 11: an edit of FAV1 in a copy failed: sqlite3_step failed:19", "be edited"},
        {"DELETE FROM FavoriteItem WHERE FavoriteId BETWEEN 11 AND 14; UPDATE Service SET FavTag ="
         " 0, FavTag2 = 0; CREATE TRIGGER t BEFORE INSERT ON FavoriteItem BEGIN SELECT"
         " RAISE(IGNORE); END",
         "FavoriteList 13: an edit of FAV3 in a copy did not write what it was told", "lost"},
        {"UPDATE Service SET bissKey = 'secret' WHERE Pid = 3", "bissKey is 'secret', not 12", ""},
    };
    std::string const before = content("set.db");
    for (auto const& c : cases) {
        change(c.sql);
        std::string const broken = content("set.db");
        output("check --all", 1);
        EXPECT_THAT(out, HasSubstr(c.row)) << c.sql << err;
        EXPECT_THAT(out, HasSubstr(c.viewer)) << c.sql;
        EXPECT_EQ(content("set.db"), broken) << "a check writes nothing";
        write("set.db", before);
    }
}

TEST_F(ToolTest, LeavesSoundAndHarmlessRowsAlone) {
    expect({"check --json", 0, "[]\n", nullptr});
    char const* const harmless[] = {
        "UPDATE Service SET MediaType = NULL, Selectable = NULL, SoundSelection = '' WHERE Pid = 7",
        "UPDATE FavoriteItem SET ChannelNum = 1, isDeleted = 1 WHERE Id = 8; PRAGMA journal_mode = "
        "WAL",
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
    expect({"check", 1, "and 20 more of dangling-item\n--all shows every finding.\n30 findings.\n",
            nullptr});
    expect({"check --all", 1, "lacks number 129\n", nullptr});
    expect({"check --json", 1, "\"viewer\": \"Mine lacks number 129\"", nullptr});
}

TEST_F(ToolTest, TellsTheCauseBeforeWhatFollowsFromIt) {
    change("UPDATE FavoriteList SET Creator = 'User.tvFAV5' WHERE Pid = 12");
    output("check", 1);
    EXPECT_THAT(out, HasSubstr("2 of fav-tag may follow from it"));
    EXPECT_THAT(out, testing::Not(HasSubstr("is not in FAV")));
    expect({"check --all --fail-on edits", 1, "but is not in FAV", nullptr});
    expect({"check --json", 1, "\"severity\": \"edits\"", nullptr});
    EXPECT_THAT(out, HasSubstr("\"cause\": \"fav-order\""));
    change(
        "UPDATE FavoriteList SET Creator = 'User.tvFAV2' WHERE Pid = 12;"
        "UPDATE Service SET FavTag = 0 WHERE Pid = 1");
    expect({"check --fail-on edits", 0, "FavTag 0, but is in FAV1", nullptr});
    expect({"check --fail-on none", 2, nullptr, "'none' is none of edits, seen, tuning, slow"});
}

// A view, or a trigger, may hold a loop without end.
TEST_F(ToolTest, EndsWhatAForeignDatabaseDoesForEver) {
    std::string const endless = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) ";
    change(
        "CREATE TRIGGER t AFTER INSERT ON FavoriteItem BEGIN INSERT INTO Lcn SELECT i, i, i FROM "
        "(" +
        endless + "SELECT i FROM n WHERE i < 0); END");
    expect({"check --seconds 1", 1,
            "FavoriteItem: writing FavoriteItem did not end within 1 second\n", nullptr});
    change("DROP TRIGGER t; ALTER TABLE FavoriteList RENAME TO F; CREATE VIEW FavoriteList AS " +
           endless + "SELECT F.* FROM n, F");
    expect({"check --seconds 1", 1,
            "FavoriteList: reading FavoriteList did not end within 1 second\n", nullptr});
    EXPECT_THAT(out, HasSubstr("of unread may follow from it"));
    EXPECT_THAT(out, testing::Not(HasSubstr("rule fav-lists")));
    EXPECT_THAT(out, HasSubstr("FavoriteList: is a view, not a table"));
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
