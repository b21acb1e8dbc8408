// check: each way in which a database can be broken is found, with its row and its consequence.
#include <memory>

#include "tool_process.h"

using testing::HasSubstr;

namespace {

TEST_F(ToolTest, FindsEachFaultAndAWayOutThatMendsItAlone) {
    const struct {
        char const* sql;
        char const* row;
        char const* viewer;
        char const* way;  // out of it; null where a person decides
    } cases[] = {
        {"DROP TABLE Lcn", "Lcn: the table does not exist", "requests that read it give nothing",
         nullptr},
        {"ALTER TABLE Service DROP COLUMN bissKey", "Service: column bissKey does not exist", "",
         nullptr},
        {"ALTER TABLE FavoriteItem ADD COLUMN Encrypted",
         "FavoriteItemView: SQLite refuses the view: ambiguous column name: Encrypted",
         "no list shows a service", nullptr},
        {"DROP INDEX ItemByService", "FavoriteItem: no index begins with ServiceId", "take long",
         "CREATE INDEX ItemByService      ON FavoriteItem (ServiceId, FavoriteId)"},
        {"DELETE FROM FavoriteList WHERE Pid = 14", "FavoriteList: 3 lists are FAV lists, not four",
         "every edit is refused", nullptr},
        {"UPDATE FavoriteList SET Creator = 'User.tvFAV5' WHERE Pid = 12",
         "FavoriteList 13: FAV3 is the FAV list in place 2", "mark their services as FAV2",
         nullptr},
        {"UPDATE FavoriteList SET Uuid = 'u-fav1' WHERE Pid = 12",
         "FavoriteList 11, 12: the lists share the uuid 'u-fav1'", "the services of the first",
         nullptr},
        {"UPDATE FavoriteList SET Uuid = NULL WHERE Pid = 21",
         "FavoriteList 21: the list 'Astra' has no uuid", "opens empty", nullptr},
        {"UPDATE FavoriteList SET UpdateTag = 65536 WHERE Pid = 12",
         "FavoriteList 12: UpdateTag is 65536, not 0 to 65535", "an edit of FAV2 may not show",
         "UPDATE FavoriteList SET UpdateTag = 0 WHERE Pid = 12"},
        {"UPDATE FavoriteList SET Attributes = 'x' WHERE Pid = 21",
         "FavoriteList 21: Attributes is 'x', no number", "overview of lists lacks Astra", nullptr},
        {"DELETE FROM Service WHERE Pid = 2",
         "FavoriteItem 2, 8: names service 2, which does not exist", "all lacks number 2", nullptr},
        {"DELETE FROM Service", "Service: holds no row, and 14 entries of lists name services",
         "no list shows anything", nullptr},
        {"UPDATE FavoriteItem SET ServiceId = NULL WHERE Id = 8", "names service NULL",
         "edits of a FAV list pass the entry over", nullptr},
        {"UPDATE FavoriteItem SET FavoriteId = 99 WHERE Id = 8",
         "FavoriteItem 8: belongs to list 99, which does not exist", "no list shows the entry",
         nullptr},
        {"UPDATE FavoriteItem SET OriginalFavoriteId = 99 WHERE Id = 8",
         "FavoriteItem 8: comes from list 99, which does not exist", "without a network",
         "UPDATE FavoriteItem SET OriginalFavoriteId = FavoriteId WHERE OriginalFavoriteId IS 99"},
        {"DELETE FROM DvbService WHERE ServiceId = 4",
         "Service 4: has no row in AnalogService or DvbService",
         "no list shows テレビ東京; 1 of them hold it", nullptr},
        {"UPDATE FavoriteItem SET ChannelNum = 'x' WHERE Id = 8",
         "FavoriteItem 8: ChannelNum is 'x', no number", "in the wrong place", nullptr},
        {"UPDATE FavoriteItem SET ChannelNum = 1 WHERE Id = 8",
         "FavoriteItem 7, 8: share number 1 of Mine", "which one is not certain", nullptr},
        {"INSERT INTO FavoriteItem (ServiceId, FavoriteId, OriginalFavoriteId, ChannelNum) VALUES "
         "(3, 11, 11, 9)",
         "name service 3 again in Mine", "shown more than once", nullptr},
        {"UPDATE Service SET FavTag3 = 1 WHERE Pid = 1",
         "Service 1: has FavTag3 1, but is not in FAV3", "FAV3 does not show",
         "UPDATE Service SET FavTag3 = 0 WHERE Pid = 1"},
        {"UPDATE Service SET FavTag = 0 WHERE Pid = 1", "Service 1: has FavTag 0, but is in FAV1",
         "not marked as a favourite", "UPDATE Service SET FavTag = 1 WHERE Pid = 1"},
        {"UPDATE Service SET Encrypted = NULL WHERE Pid = 3",
         "Service 3: Encrypted is NULL, no number",
         "takes it as 0 for VOX, in all (number 3), FAV1 (number 3), FAV2 (number 1)",
         "UPDATE Service SET Encrypted = 0 WHERE Encrypted IS NULL"},
        {"UPDATE FavoriteItem SET Selectable = NULL WHERE Id = 8",
         "FavoriteItem 8: Selectable is NULL, no number", "ZDF HD, in FAV1 (number 2)", nullptr},
        {"DELETE FROM Tuner WHERE TunerId = (SELECT TunerId FROM DvbService WHERE ServiceId = 4)",
         "Tuner 4: does not exist, and DvbService names it",
         "is shown, but cannot be tuned, in all (number 4)", nullptr},
        {"UPDATE Service SET Type = 12 WHERE Pid = 2", "Service 2: Type 12 is no kind of delivery",
         "cannot be tuned", nullptr},
        {"ALTER TABLE Tuner RENAME TO T; CREATE VIEW Tuner AS SELECT * FROM T",
         "Tuner: is a view, not a table", "edits that write it fail", nullptr},
        {"ALTER TABLE FavoriteItem ADD COLUMN Extra NOT NULL DEFAULT 1; PRAGMA writable_schema = "
         "1; UPDATE sqlite_master SET sql = replace(sql, 'Extra NOT NULL DEFAULT 1', 'Extra NOT "
         "NULL')",
         "FavoriteItem: column Extra is NOT NULL, and has no default", "can be added", nullptr},
        {"PRAGMA writable_schema = 1; UPDATE sqlite_master SET sql = replace(sql, 'isDeleted       "
         "   INTEGER DEFAULT 0', 'isDeleted INTEGER DEFAULT 1')",
         "FavoriteItem: the default of isDeleted is 1, not 0", "hidden at once", nullptr},
        {"CREATE TRIGGER t BEFORE INSERT ON FavoriteItem BEGIN SELECT RAISE(ABORT, 'no'); END",
         "FavoriteList 11, 12, 13, 14: on a copy of FAV1, FAV2, FAV3, FAV4, an edit that inserts "
         "in front failed: no, because of the trigger t on FavoriteItem",
         "cannot be edited", "DROP TRIGGER \"t\""},
        {"CREATE TABLE UriView (A)", "UriView: is a table of the database", "its own view",
         nullptr},
        {"CREATE INDEX LcnFoul ON Lcn (ServiceId, Lcn)", "LcnFoul: is an index on Lcn", "another",
         "DROP INDEX \"LcnFoul\"; CREATE INDEX IF NOT EXISTS LcnByService ON Lcn (ServiceId)"},
        {"INSERT INTO FavoriteList (Pid, Uuid, Name, Creator) VALUES (40, 'x', 'y', "
         "'tamun.sl2.servicelist$all')",
         "FavoriteList 1, 40: 2 lists are the All list, not one", "not certain", nullptr},
        {"DELETE FROM FavoriteList WHERE Pid = 1", "0 lists are the All list", "missing", nullptr},
        {"UPDATE FavoriteList SET Creator = NULL WHERE Pid = 21",
         "FavoriteList 21: Creator is NULL", "overview of lists lacks Astra", nullptr},
        {"UPDATE FavoriteList SET Name = NULL WHERE Pid = 21", "FavoriteList 21: Name is NULL", "",
         nullptr},
        {"UPDATE FavoriteList SET Name = CAST(x'41ff' AS TEXT) WHERE Pid = 21",
         "FavoriteList 21: Name is no UTF-8", "signs that are none", nullptr},
        {"UPDATE FavoriteList SET Name = 'FAV2' WHERE Pid = 11",
         "FavoriteList 11, 12: the lists are called 'FAV2'", "cannot tell them apart", nullptr},
        {"UPDATE FavoriteList SET NetworkId = NULL WHERE Pid = 21", "21: NetworkId is NULL", "",
         nullptr},
        {"UPDATE FavoriteList SET MaxChannelNumber = 2 WHERE Pid = 11",
         "FavoriteList 11: MaxChannelNumber is 2, and the highest number 5",
         "SET MaxChannelNumber = 5 WHERE Pid = 11",
         "UPDATE FavoriteList SET MaxChannelNumber = 5 WHERE Pid = 11"},
        {"UPDATE FavoriteItem SET ChannelNum = 2147483648 WHERE Id = 8",
         "FavoriteItem 8: ChannelNum is 2147483648, no number of 32 bits", "edits of the list are",
         nullptr},
        {"UPDATE FavoriteItem SET ChannelNum = 0 WHERE Id = 8",
         "FavoriteItem 8: ChannelNum is 0, and numbers begin with 1", "no number keys reach",
         nullptr},
        {"UPDATE Service SET FavTag = 2 WHERE Pid = 1", "has FavTag 2, not 0 or 1", "",
         "UPDATE Service SET FavTag = 1 WHERE Pid = 1"},
        {"UPDATE Service SET Uuid = '' WHERE Pid = 2", "Service 2: has no uuid", "ZDF HD is shown",
         nullptr},
        {"UPDATE Service SET Uuid = 'service-1' WHERE Pid = 2",
         "Service 1, 2: share the uuid 'service-1'", "may mean the other", nullptr},
        {"UPDATE Service SET Name = 'A' || char(27) WHERE Pid = 2",
         "Service 2: its name holds control bytes", "signs that are none", nullptr},
        {"UPDATE Service SET Name = 'A' || char(0) WHERE Pid = 2", "2: its name holds a NUL", "",
         nullptr},
        {"UPDATE Service SET Name = '' WHERE Pid = 2", "Service 2: its name is empty", "", nullptr},
        {"DELETE FROM FavoriteItem WHERE ServiceId = 4", "Service 4: stands in no list",
         "テレビ東京", nullptr},
        {"DELETE FROM FavoriteItem WHERE ServiceId = 3 AND FavoriteId = 1",
         "Service 3: is not in the All list", "lacks VOX", nullptr},
        {"UPDATE DvbService SET Sid = 65536 WHERE ServiceId = 2",
         "Service 2: has Sid 65536, and ids have 16 bits", "not found", nullptr},
        {"UPDATE DvbService SET Oid = 1, Tid = 1011, Sid = 11110, TunerId = (SELECT TunerId FROM "
         "DvbService WHERE ServiceId = 2) WHERE ServiceId = 3",
         "Service 2, 3: have the triplet 1, 1011, 11110 on one transponder", "same programme",
         nullptr},
        {"UPDATE DvbCTuner SET Frequency = 0", "Frequency is 0, no frequency", "Jazz", nullptr},
        {"UPDATE DvbS2Tuner SET Polarization = 9", "DvbS2Tuner 2: Satellite is 4, Polarization 9",
         "", nullptr},
        {"UPDATE DvbSTuner SET Satellite = 'x'", "Satellite is 'x'", "cannot be tuned", nullptr},
        {"UPDATE Tuner SET Frontend = 12 WHERE TunerId = 1", "Tuner 1: Frontend is 12", "",
         nullptr},
        {"UPDATE Service SET Type = 0, Uri = 'nowhere' WHERE Pid = 2",
         "Service 2: Uri is 'nowhere', no tuning URI", "cannot be tuned", nullptr},
        {"INSERT INTO Lcn VALUES (99, 21, 1)",
         "Lcn 2: name service 99, and the service or their list does not exist", "",
         "DELETE FROM Lcn WHERE rowid IN (2)"},
        {"UPDATE Lcn SET Lcn = 'x'", "Lcn of service 1: Lcn is 'x', no channel number", "",
         nullptr},
        {"INSERT INTO Lcn VALUES (1, 12, 7)",
         "Lcn of service 1: 2 rows give it the numbers 7 to 101", "the first", nullptr},
        {"UPDATE Tuner SET NITId = 70000 WHERE TunerId = 1", "Tuner 1: NITId is 70000", "network",
         nullptr},
        {"UPDATE FavoriteItem SET Id = 4294967304 WHERE Id = 8",
         "FavoriteItem 4294967304: its key is not 1 to 2147483647", "another row", nullptr},
        {"PRAGMA writable_schema = 1; UPDATE sqlite_master SET sql = replace(sql, 'Visible         "
         "   INTEGER DEFAULT -1', 'Visible INTEGER DEFAULT 0')",
         "FavoriteItem: the default of Visible is 0, not -1", "flag of their service", nullptr},
        {"CREATE TRIGGER t AFTER UPDATE ON Service BEGIN UPDATE Service SET FavTag = 0; END",
         "an edit that inserts in front did not write FavTag as it has to, because of the trigger "
         "t on Service",
         "not marked", "DROP TRIGGER \"t\""},
        {"CREATE TRIGGER t BEFORE DELETE ON FavoriteItem BEGIN SELECT RAISE(IGNORE); END",
         "an edit that removes one from the middle did not write what it was told", "stay",
         "DROP TRIGGER \"t\""},
        {"CREATE TRIGGER t BEFORE UPDATE ON FavoriteList BEGIN SELECT RAISE(ABORT, 'no'); END",
         "left UpdateTag as it was, because of the trigger t on FavoriteList", "do not show",
         "DROP TRIGGER \"t\""},
        {"CREATE TRIGGER t AFTER INSERT ON FavoriteItem BEGIN DELETE FROM FavoriteItem WHERE "
         "FavoriteId = 21; END",
         "an edit that inserts in front changed other lists", "lose", "DROP TRIGGER \"t\""},
        {"UPDATE FavoriteList SET Creator = 'User.tvFAV' || (15 - Pid) WHERE Pid BETWEEN 11 AND 14",
         "FavoriteList 12, 13, 14: the keys and creators of the FAV lists do not ascend", "mark",
         nullptr},
        {"CREATE TRIGGER t BEFORE UPDATE ON FavoriteItem WHEN old.FavoriteId = 11 BEGIN SELECT "
         "RAISE(ABORT, 'no'); END",
         "on a copy of all, FAV1, an edit that writes entries as they are failed", "be edited",
         "DROP TRIGGER \"t\""},
        {"DELETE FROM FavoriteItem WHERE FavoriteId BETWEEN 11 AND 14; UPDATE Service SET FavTag = "
         "0, FavTag2 = 0; CREATE TRIGGER t BEFORE INSERT ON FavoriteItem BEGIN SELECT "
         "RAISE(IGNORE); END",
         "an edit that inserts in front did not write what it was told", "lost",
         "DROP TRIGGER \"t\""},
        {"UPDATE Service SET bissKey = 'secret' WHERE Pid = 3", "bissKey is 'secret', not 12", "",
         nullptr},
        {"CREATE UNIQUE INDEX u ON FavoriteItem (FavoriteId, ChannelNum)",
         "an edit that swaps two entries failed: UNIQUE constraint failed: "
         "FavoriteItem.FavoriteId, FavoriteItem.ChannelNum, because of the index u on FavoriteItem",
         "cannot be edited",
         "DROP INDEX \"u\"; CREATE INDEX u ON FavoriteItem (FavoriteId, ChannelNum)"},
        {"CREATE TRIGGER t BEFORE UPDATE OF FavTag ON Service BEGIN SELECT RAISE(IGNORE); END",
         "did not write FavTag as it has to, because of the trigger t on Service", "stay marked",
         "DROP TRIGGER \"t\""},
        {"CREATE TRIGGER t AFTER UPDATE OF ChannelNum ON FavoriteItem BEGIN UPDATE FavoriteItem "
         "SET ChannelNum = ChannelNum + 1 WHERE FavoriteId = new.FavoriteId AND ServiceId = 5; END",
         "an edit that writes entries as they are did not write what it was told", "elsewhere",
         "DROP TRIGGER \"t\""},
        {"CREATE INDEX i ON Service (Name); PRAGMA writable_schema = 1; UPDATE sqlite_master SET "
         "sql = 'CREATE INDEX i ON Service (Uuid)' WHERE name = 'i'",
         "i: the index disagrees with its table in", "lack entries", "REINDEX \"i\""},
        {"UPDATE FavoriteItem SET FavoriteId = CAST(FavoriteId AS BLOB) WHERE FavoriteId = 11",
         "FavoriteItem: 4 rows hold FavoriteId as blob", "lost to every list",
         "UPDATE FavoriteItem SET FavoriteId = CAST(CAST(FavoriteId AS TEXT) AS INTEGER) WHERE "
         "typeof(FavoriteId) IN ('blob', 'text') AND CAST(FavoriteId AS TEXT) = "
         "CAST(CAST(CAST(FavoriteId AS TEXT) AS INTEGER) AS TEXT)"},
        {"UPDATE DvbSTuner SET Frequency = 11362 WHERE TunerId = 3",
         "DvbSTuner 3: Frequency is 11362, in MHz, and the others are in kHz", "cannot be tuned",
         "UPDATE DvbSTuner SET Frequency = Frequency * 1000 WHERE TunerId IN (3)"},
        {"UPDATE DvbSTuner SET Frequency = 11362000000 WHERE TunerId = 3",
         "DvbSTuner 3: Frequency is 11362000000, in Hz, and the others are in kHz",
         "1 service cannot",
         "UPDATE DvbSTuner SET Frequency = Frequency / 1000 WHERE TunerId IN (3)"},
        {"UPDATE DvbCTuner SET Frequency = 330000000 WHERE TunerId = 5",
         "DvbCTuner 5: Frequency is 330000000, in Hz, and the others are in kHz", "",
         "UPDATE DvbCTuner SET Frequency = Frequency / 1000 WHERE TunerId IN (5)"},
        {"UPDATE Service SET Type = 4 WHERE Pid = 4; UPDATE Tuner SET Frontend = 4 WHERE TunerId = "
         "4;"
         " INSERT INTO DvbSTuner (TunerId, Frequency, SymbolRate, Satellite) SELECT 4, 12188000,"
         " SymbolRate, Satellite FROM DvbSTuner WHERE TunerId = 3; UPDATE DvbSTuner SET Frequency ="
         " 11000 + TunerId WHERE TunerId < 4",
         "DvbSTuner 1, 3: Frequency is 11001, in MHz, and the others are in kHz", "2 services",
         "UPDATE DvbSTuner SET Frequency = Frequency * 1000 WHERE TunerId IN (1, 3)"},
        {"UPDATE Service SET Visible = 'yes' WHERE Pid > 1",
         "Service 2, 3, 4, 5, 6 and 1 more: Visible is 'yes', no number", "so it is with 5 others",
         nullptr},
        {"UPDATE Service SET FavTag3 = 1 WHERE Pid IN (2, 5)",
         "Service 2, 5: has FavTag3 1, but is not in FAV3", "ZDF HD is marked",
         "UPDATE Service SET FavTag3 = 0 WHERE Pid IN (2, 5)"},
        {"UPDATE DvbSTuner SET SymbolRate = 22000000 WHERE TunerId = 3",
         "SymbolRate is 22000000, in Bd, and the others are in kBd", "",
         "UPDATE DvbSTuner SET SymbolRate = SymbolRate / 1000 WHERE TunerId IN (3)"},
        {"UPDATE DvbSTuner SET SymbolRate = 0 WHERE TunerId = 3", "DvbSTuner 3: SymbolRate is 0",
         "cannot be tuned", nullptr},
        {"UPDATE Tuner SET Frontend = 2 WHERE TunerId = 1",
         "Tuner 1: Frontend is 2, and its services are of Type 4", "",
         "UPDATE Tuner SET Frontend = 4 WHERE TunerId = 1"},
        {"UPDATE DvbService SET Sid = 0 WHERE ServiceId = 2", "Service 2: has Sid 0",
         "cannot be tuned", nullptr},
        {"UPDATE Service SET Name = 'A' || char(8238) WHERE Pid = 2",
         "2: its name holds controls, or letters that turn", "", nullptr},
        {"UPDATE Service SET Name = 'A' || char(134) WHERE Pid = 2", "2: its name holds controls",
         "", nullptr},
        {"UPDATE Service SET Name = ' ' || char(160) WHERE Pid = 2", "Service 2: its name is blank",
         "", nullptr},
        {"UPDATE FavoriteItem SET isDeleted = 1 WHERE ServiceId = 2 AND FavoriteId = 1",
         "FavoriteItem 8: the service is hidden in the All list, and shown in Mine",
         "service 2 is gone", nullptr},
        {"UPDATE FavoriteItem SET isDeleted = 1 WHERE FavoriteId = 11",
         "FavoriteList 11: all 4 entries of Mine are hidden", "looks empty", nullptr},
    };
    std::filesystem::remove(folder / "bin/sync");  // after each edit that is tried
    std::filesystem::create_symlink("/bin/true", folder / "bin/sync");
    std::string const before = content("set.db");
    for (auto const& c : cases) {
        change(c.sql);
        std::string const broken = content("set.db");
        output("check --all", 1);
        EXPECT_THAT(out, HasSubstr(c.row)) << c.sql << err;
        EXPECT_THAT(out, HasSubstr(c.viewer)) << c.sql;
        EXPECT_EQ(content("set.db"), broken) << "a check writes nothing";
        if (c.way != nullptr) {
            EXPECT_THAT(out, HasSubstr(std::string("To mend it: ") + c.way)) << c.sql;
            change(c.way);
            expect({"check", 0, "No findings.\n", nullptr});
        }
        write("set.db", before);
    }
}

TEST_F(ToolTest, LeavesSoundAndHarmlessRowsAlone) {
    expect({"check --json", 0, "[]\n", nullptr});
    char const* const harmless[] = {
        "ALTER TABLE FavoriteItem ADD COLUMN Twice AS (ChannelNum * 2); ALTER TABLE Service ADD "
        "COLUMN"
        " Sort TEXT COLLATE RTRIM; CREATE TABLE Foreign1 (a); DROP TABLE Foreign1",
        "CREATE TABLE Big AS WITH n(i) AS (SELECT 1 UNION SELECT i + 1 FROM n WHERE i < 99) SELECT"
        " randomblob(900) FROM n; DROP TABLE Big; CREATE TABLE Lost (a); PRAGMA writable_schema = "
        "1;"
        " DELETE FROM sqlite_master WHERE name = 'Lost'",  // pages that are free, and one of nobody
        "PRAGMA writable_schema = 1; UPDATE sqlite_master SET sql = replace(sql, 'bissKey          "
        "   TEXT',"
        " 'bissKey TEXT COLLATE klingon')",
        "UPDATE Service SET Name = 'MTV ' || char(8207) WHERE Pid = 2",
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
    using namespace channel_database;
    std::filesystem::remove(folder / "set.db");
    sqlite3* opened = nullptr;
    sqlite3_open((folder / "set.db").c_str(), &opened);
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> const connection(opened, sqlite3_close);
    sqlite3_exec(opened, "PRAGMA encoding = 'UTF-16'", nullptr, nullptr, nullptr);
    ChannelDatabase d(opened);
    auto const all = d.list("tamun.sl2.servicelist$all", 1).name("$all").uuid("u-all");
    for (int i = 1; i <= 4; ++i)
        d.list("User.tvFAV" + std::to_string(i), 10 + i)
            .name("FAV" + std::to_string(i))
            .uuid("u" + std::to_string(i));
    d.put(all, d.dvbs("テレビ東京", 1), 1);
    d.put(all, d.dvbs2("ZDF HD", 2), 2);
    expect({"check", 0, "No findings.\n", nullptr});
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

// Ways out that are certain, all of them at once, and back.
TEST_F(ToolTest, MendsWhatIsCertainAndTakesItBack) {
    change(
        "DROP INDEX ItemByService; UPDATE FavoriteList SET UpdateTag = -1 WHERE Pid = 12;"
        " UPDATE Service SET bissKey = 'secret' WHERE Pid = 3");
    std::string const foul = rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 12");
    expect({"check --mend", 1, "Running, in one transaction:\n", nullptr});
    expect({"check", 1, "To mend it: UPDATE Service SET bissKey = ...", nullptr});
    EXPECT_THAT(out, HasSubstr("1 finding.\n"));
    std::string const mended = content("set.db");
    expect({"check --mend", 1, "Nothing can be mended without a decision", nullptr});
    EXPECT_EQ(content("set.db"), mended);
    expect({"undo", 0, "check --mend", nullptr});
    EXPECT_EQ(rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 12"), foul);
}

TEST_F(ToolTest, ExaminesTheOttDatabase) {
    ott({2, 9, 9, -1, -1});
    output("check", 1);
    EXPECT_THAT(out, HasSubstr("number 2 of FAV1, and so has service 2 (ZDF HD)"));
    EXPECT_THAT(out, HasSubstr("renumbering moves ZDF HD"));
    EXPECT_THAT(out, HasSubstr("2 OTT channels have number 9 of FAV1"));
    EXPECT_THAT(out, HasSubstr("favIndex of FAV1 is -1, no number, in 2 rows"));
    std::string const file = folder / "zentova_DB_V1.3.db";
    {
        channel_database::ChannelDatabase other(file);
        other.run("BEGIN EXCLUSIVE");
        expect({"check", 1, "database is locked", nullptr});
    }
    if (geteuid() == 0) {  // to whom every file is readable
        std::filesystem::permissions(folder, std::filesystem::perms::all);
        std::filesystem::permissions(file, std::filesystem::perms::owner_read);
        EXPECT_EQ(run("--db set.db check", "setpriv --reuid=65534 --clear-groups"), 1) << err;
        EXPECT_THAT(out, HasSubstr("OTT database: cannot open"));
    }
    write("zentova_DB_V1.3.db", "no database");
    expect({"check", 1, "file is not a database", nullptr});
}

TEST_F(ToolTest, ReportsDamagedFiles) {
    std::string pages = content("set.db");
    for (std::size_t const part : {2U, 9U}) {
        write("set.db", pages.substr(0, pages.size() * part / (part + 1)));
        expect({"check --json", 1, "\"rule\": \"damage\"", nullptr});
        EXPECT_THAT(out, HasSubstr("rows that can be read: AnalogService"));
        expect({"check", 1, ".recover", nullptr});
    }
    pages.replace(4096, 4096, 4096, 'x');  // the page behind the schema's
    write("set.db", pages);
    output("check", 1);
    EXPECT_THAT(out, HasSubstr("lists may end early or hold wrong entries"));
    output("services all", 1);
    EXPECT_THAT(err, HasSubstr("malformed"));
}

}  // namespace
