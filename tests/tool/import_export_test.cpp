// import, export and the way of favourites from one scan to the next.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "tool_process.h"

namespace fs = std::filesystem;
using channel_database::ChannelDatabase;
using testing::HasSubstr;

namespace {

constexpr char kServices[] =
    "SELECT Name, MediaType, Encrypted, (SELECT count(*) FROM FavoriteItem WHERE FavoriteId = 1"
    " AND ServiceId = Pid) FROM Service ORDER BY Pid";

TEST_F(ToolTest, ImportsAChannelListAndNamesSkippedLines) {
    write("list", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\nfoul\n");
    EXPECT_EQ(run("import list new.db"), 0);
    EXPECT_EQ(out, "new.db: 1 channels, 0 groups, 1 lines skipped\n");
    EXPECT_EQ(err, "channellist: skipped 1: a channel has 9 to 13 fields, this line 1\n  list:2\n");
    EXPECT_EQ(rows("SELECT Name FROM Service WHERE Type = 3", "new.db"), "A");
    EXPECT_EQ(run("import list new.db"), 1);
    EXPECT_THAT(err, HasSubstr("new.db exists; --force replaces its content"));
    EXPECT_EQ(run("import missing new.db --force"), 1);
    EXPECT_THAT(err, HasSubstr("cannot read missing: No such file"));
    write("list", ":Group\nfoul\n");
    EXPECT_EQ(run("import list new.db --force"), 1);
    EXPECT_THAT(err, HasSubstr("the list holds no channel"));
    EXPECT_EQ(rows("SELECT Name FROM Service WHERE Type = 3", "new.db"), "A");
}

// The content alone: the file keeps its owner's settings, and what others left is settled first.
TEST_F(ToolTest, ReplacesTheContentOfADatabaseAndNeverTheFile) {
    write("list", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\n");
    auto const import = [&](std::string const& file) {
        return run("import list " + file + " --force");
    };
    fs::permissions(folder / "set.db", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("set.db", folder / "link.db");
    auto const inode = fs::hard_link_count(folder / "set.db");
    fs::create_hard_link(folder / "set.db", folder / "same.db");
    for (char const* mode : {"delete", "wal"}) {
        rows(std::string("PRAGMA journal_mode = ") + mode);
        std::string const kept = rows("PRAGMA journal_mode") + rows("PRAGMA page_size");
        EXPECT_EQ(import("link.db"), 0) << err;
        EXPECT_EQ(rows("SELECT Name FROM Service WHERE Type = 3"), "A");
        EXPECT_EQ(rows("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(rows("PRAGMA journal_mode") + rows("PRAGMA page_size"), kept);
        EXPECT_EQ(rows("SELECT Name FROM Service WHERE Type = 3", "same.db"), "A");
    }
    EXPECT_TRUE(fs::is_symlink(folder / "link.db"));
    EXPECT_EQ(fs::hard_link_count(folder / "set.db"), inode + 1);
    EXPECT_EQ(fs::status(folder / "set.db").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

// A journal or log that a power cut left beside the file belongs to the old content.
TEST_F(ToolTest, SettlesAHotJournalBeforeItReplaces) {
    write("list", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\n");
    for (char const* mode : {"DELETE", "WAL"}) {
        pid_t const child = fork();
        if (child == 0) {
            sqlite3* connection = nullptr;
            sqlite3_open((folder / "set.db").c_str(), &connection);
            std::string const sql = std::string("PRAGMA journal_mode = ") + mode +
                                    "; PRAGMA cache_size = 1; BEGIN; UPDATE Service SET Name ="
                                    " printf('%5000s', 'x'); SELECT count(*) FROM Service";
            sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
            sqlite3_db_cacheflush(connection);
            _exit(0);
        }
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        std::string const left = *mode == 'W' ? "set.db-wal" : "set.db-journal";
        ASSERT_TRUE(fs::exists(folder / left));
        fs::copy_file(folder / "set.db", folder / "other.db", fs::copy_options::overwrite_existing);
        fs::copy_file(folder / left, folder / ("other" + left.substr(3)));
        EXPECT_EQ(run("services all --db other.db"), 0) << err;
        EXPECT_THAT(out, testing::Not(HasSubstr("xxx")));
        EXPECT_EQ(run("import list set.db --force"), 0) << err;
        EXPECT_EQ(rows("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(rows("SELECT Name FROM Service WHERE Type = 3"), "A");
    }
}

TEST_F(ToolTest, BringsABackupBackWhole) {
    std::string const tables[] = {"Service", "FavoriteList", "FavoriteItem", "Lcn", "Tuner"};
    auto const everything = [&](std::string const& file) {
        std::string all;
        for (std::string const& table : tables)
            all += rows("SELECT * FROM " + table, file) + "\n";
        return all;
    };
    std::string const before = everything("set.db");
    output("backup copy.db");
    EXPECT_EQ(out, "copy.db: 7 lists, 7 services of set.db\n");
    EXPECT_EQ(everything("copy.db"), before);
    output("backup copy.db", 1);
    EXPECT_THAT(err, HasSubstr("File exists"));
    change(
        "UPDATE Service SET Name = 'x' WHERE Pid = 1; DELETE FROM Service WHERE Pid = 2;"
        "DELETE FROM FavoriteItem WHERE ServiceId = 3; DELETE FROM FavoriteList WHERE Pid = 21;"
        "INSERT INTO FavoriteList (Uuid, Name) VALUES ('new', 'new')");
    std::string const changed = everything("set.db");
    constexpr char kChanges[] =
        "1 lists added, 1 lists removed, 3 lists changed, 1 services added, 0 services removed, 1"
        " services changed\n";
    expect({"restore copy.db --dry-run", 0, kChanges, nullptr});
    EXPECT_EQ(everything("set.db"), changed);
    expect({"restore copy.db", 0, "Written, and flushed to the disk", nullptr});
    EXPECT_EQ(everything("set.db"), before);
    expect({"restore copy.db", 0, "0 lists added, 0 lists removed, 0 lists changed, 0", nullptr});
    expect({"restore set.db", 1, nullptr, "is the database itself"});
    write("text", "no database, but a text of some length");
    expect({"restore text", 1, nullptr, "text is no SQLite database"});
    EXPECT_EQ(everything("set.db"), before);
}

void execute(fs::path const& file, std::string const& sql) {
    sqlite3* connection = nullptr;
    sqlite3_open(file.c_str(), &connection);
    EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sql << ": " << sqlite3_errmsg(connection);
    sqlite3_close(connection);
}

// A backup is examined before anything is written, and no whole database goes without a copy.
TEST_F(ToolTest, RefusesToRestoreWhatWouldLoseTheDatabase) {
    execute(folder / "foreign", "CREATE TABLE Service (Pid INTEGER)");
    write("list", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\n");
    output("backup copy");
    for (char const* file : {"damaged", "cut", "poor"})
        fs::copy_file(folder / "copy", folder / file);
    fs::resize_file(folder / "cut", 9000);
    execute(folder / "poor", "ALTER TABLE FavoriteList DROP COLUMN Attributes");
    auto const page = std::stol(rows("SELECT rootpage FROM sqlite_master WHERE name = 'Lcn'"));
    std::fstream damaged(folder / "damaged", std::ios::in | std::ios::out | std::ios::binary);
    damaged.seekp(4096 * (page - 1)).write("\x0D\0\0\0\xFF", 5);
    damaged.close();
    change("UPDATE FavoriteItem SET ChannelNum = 9 WHERE FavoriteId = 11 AND ServiceId = 5");
    std::string const before = content("set.db");
    Invocation const refused[] = {
        {"restore damaged", 1, nullptr, "damaged is damaged, and nothing is written: "},
        {"restore cut", 1, nullptr, "cannot read cut: database disk image is malformed"},
        {"restore foreign", 1, nullptr, "foreign is no whole channel database, and nothing is"},
        {"restore poor -n", 1, nullptr, "poor is no whole channel database, and nothing is"}};
    for (Invocation const& each : refused)
        expect(each);
    for (char const* command : {"restore copy", "import list set.db --force"}) {
        for (char const* place : {"XDG_STATE_HOME=/proc", "env -u HOME"}) {
            EXPECT_EQ(run(std::string("--db set.db ") + command, place), 1) << command << place;
            EXPECT_THAT(err, HasSubstr("no copy could be kept, and nothing is written (--no-undo"));
        }
    }
    EXPECT_EQ(content("set.db"), before);
    EXPECT_EQ(run("--db set.db restore copy --no-undo", "env -u HOME"), 0) << err;
    EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5");
    EXPECT_EQ(run("--db set.db edit FAV1 move 1 to 9", "env -u HOME"), 0) << err;
    EXPECT_THAT(err, HasSubstr("will not know of this: neither XDG_STATE_HOME nor HOME names"));
}

// A copy needs nothing beside it, and the database stays in its own mode whatever the copy's is.
TEST_F(ToolTest, RestoresAcrossJournalModesAndPageSizes) {
    for (char const* mode : {"delete", "wal"}) {
        for (char const* pages : {"1024", "4096"}) {
            std::string const copy = std::string(mode) + pages;
            execute(folder / "set.db",
                    std::string("PRAGMA journal_mode = delete; PRAGMA page_size = ") + pages +
                        "; VACUUM; PRAGMA journal_mode = " + mode);
            output("backup " + copy);
            EXPECT_EQ(rows("PRAGMA journal_mode", copy), "delete");
        }
    }
    fs::copy_file(folder / "delete1024", folder / "raw");
    execute(folder / "raw", "PRAGMA journal_mode = wal");
    for (char const* mode : {"delete", "wal"}) {
        execute(folder / "set.db", std::string("PRAGMA journal_mode = ") + mode);
        for (char const* copy : {"delete1024", "wal4096", "wal1024", "raw"}) {
            execute(folder / "set.db", "UPDATE FavoriteItem SET ChannelNum = 77");
            output(std::string("restore ") + copy);
            EXPECT_EQ(rows("PRAGMA journal_mode") + rows("PRAGMA page_size"),
                      std::string(mode) + "4096")
                << copy;
            EXPECT_EQ(fav(1), "1 1;2 2;3 3;5 5") << mode << copy;
        }
    }
}

TEST_F(ToolTest, ReplacesNothingButADatabaseThatIsFree) {
    write("list", "A:410:M64:C:6900:1:1:0:0:1:1:1:0\n");
    write("text", "a letter to my aunt, long enough to be no database\n");
    write("empty", "");
    fs::create_directory(folder / "folder");
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    fs::create_symlink("nowhere", folder / "dangling");
    std::string const set = content("set.db");
    char const* const cases[][2] = {{"text", "no SQLite database; it is left as it is"},
                                    {"folder", "no regular file"},
                                    {"fifo", "no regular file"},
                                    {"dangling", "No such file"},
                                    {"missing/new.db", "No such file"}};
    for (auto const& [file, reason] : cases) {
        std::string const before = std::string(file) == "text" ? content(file) : "";
        EXPECT_EQ(run(std::string("import list ") + file + " --force"), 1);
        EXPECT_THAT(err, HasSubstr(reason)) << file;
        EXPECT_TRUE(before.empty() || content(file) == before);
    }
    EXPECT_EQ(run("import list empty --force"), 0) << err;
    ChannelDatabase other((folder / "set.db").string());
    other.run("BEGIN IMMEDIATE");
    EXPECT_EQ(run("import list set.db --force"), 1);
    EXPECT_THAT(err, HasSubstr("set.db is locked by another process; nothing is written"));
    EXPECT_EQ(content("set.db"), set);
    std::set<std::string> files;
    for (auto const& entry : fs::directory_iterator(folder))
        files.insert(entry.path().filename());
    EXPECT_THAT(files, testing::ElementsAre(".local", "bin", "dangling", "empty", "err", "fifo",
                                            "folder", "list", "out", "set.db", "text"));
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
        "UPDATE Service SET Visible = 1, Name = 'Ja' || char(27, 10, 0x9B) || 'zz' WHERE Pid = 5");
    EXPECT_EQ(
        output("export FAV1 FAV2 av"),
        ":FAV1\n"
        "A, B| C,:12604:HC34M2S0:S19.2E:27500:8191=2:0:0:0:10301:1:1019:0\n"
        "ZDF HD:11494:HC23M5S1:S19.2E:22000:8191=27:0:0:0:11110:1:1011:0\n"
        "VOX:11954:HC34M2S0:S19.2E:27500:8191=2:0:0:FFFF:12060:1:1089:0\n"
        ":@5\n"
        "Ja\\x1b\\x0a\\x9bzz:394000:M256:C:6900:0:0:0:0:10:3:8:0\n"
        ":FAV2\n"
        ":#channellist 1 hidden VOX:11954:HC34M2S0:S19.2E:27500:8191=2:0:0:FFFF:12060:1:1089:0\n"
        ":inputs\n"
        ":#channellist 1  shown   HDMI 1  -  id:7\n");
    for (char const* command : {"export FAV1 --format enigma2", "export FAV1 --format lamedb",
                                "export FAV1 --format csv", "services FAV1 --json", "list FAV1"}) {
        EXPECT_THAT(output(command), HasSubstr("zz")) << command;
        EXPECT_THAT(out, Not(testing::ContainsRegex("[\x1b\x9b]"))) << command;
    }
}

// Gaps, hidden entries, inputs, services that are alike in all, and what an OTT channel pushed on.
TEST_F(ToolTest, BringsBackEveryListThatItExported) {
    change(
        "INSERT INTO FavoriteItem (ServiceId, FavoriteId, ChannelNum, isDeleted) VALUES"
        " (6, 13, 40, 0), (1, 13, 7, 1), (7, 13, 8, 0), (7, 14, 3, 1), (2, 14, 2, 0);"
        "UPDATE DvbService SET Oid = 1, Tid = 1011 WHERE ServiceId = 6;"
        "UPDATE Service SET FavTag4 = 1 WHERE Pid = 2");
    change("UPDATE FavoriteItem SET Id = Id + 1000");
    ott({4, 6});
    write("favourites", output("export FAV1 FAV2 FAV3 FAV4"));
    auto const lists = [&] { return fav(1) + "/" + fav(2) + "/" + fav(3) + "/" + fav(4); };
    std::string const before = content("set.db");
    std::string const stored = lists();
    expect({"import --favourites favourites", 0, "Nothing to change.", nullptr});
    EXPECT_EQ(content("set.db"), before);
    output("edit FAV3 hide 40 move 8 to 1");
    output("edit FAV2 remove VOX");
    output("edit FAV1 remove 5");
    std::string const tag = rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 14");
    expect({"import --favourites favourites", 0, "Written, and flushed", nullptr});
    EXPECT_EQ(lists(), stored);
    EXPECT_EQ(rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 14"), tag);

    change("UPDATE DvbService SET Tid = 4711, Sid = Sid + 1");
    expect({"import --favourites favourites --dry-run", 0, "FAV1: 3 services, 1 not found",
            "FAV1: Das Erste (line 2) is found by name\n"});
    EXPECT_THAT(err, HasSubstr("FAV1: the database has no service for ZDF HD (line 3)"));
    change("UPDATE Service SET Name = 'new ' || Name");
    std::string const kept = fav(1);
    expect({"import --favourites favourites", 0, "FAV1: 4 services, 4 not found", "list stays"});
    EXPECT_EQ(fav(1), kept);
}

// All lists of a database make the same one: services, numbers, hidden entries.
TEST_F(ToolTest, MakesTheSameDatabaseOfItsOwnExport) {
    constexpr char kLists[] = "SELECT Uuid FROM FavoriteList WHERE Uuid <> 'av' ORDER BY Pid";
    constexpr char const* kContent[] = {
        "SELECT Uuid, Name, ShortName, ServiceName, Type, MediaType, Encrypted, Hdtv, FavTag,"
        " FavTag2, Oid, Tid, Sid FROM Service LEFT JOIN DvbService ON ServiceId = Pid ORDER BY 1",
        "SELECT Uuid, Name, Creator, NetworkId, MaxChannelNumber FROM FavoriteList ORDER BY 1",
        "SELECT l.Uuid, s.Uuid, ChannelNum, isDeleted, o.Uuid FROM FavoriteItem JOIN FavoriteList l"
        " ON l.Pid = FavoriteId JOIN FavoriteList o ON o.Pid = OriginalFavoriteId JOIN Service s"
        " ON s.Pid = ServiceId ORDER BY 1, 2, 3",
        "SELECT TunerUuid, Frontend FROM Tuner ORDER BY 1"};
    std::ifstream sample(SAMPLE_CHANNELS);
    std::stringstream text;
    text << "Free:410: :C:6900:8191:0:0:0:1:0:0:0\n"
         << sample.rdbuf() << ":Kino\n ;x:394000: :C:6900:0:0:0:0:8:3:8:0\n"
         << "T2, FHD,:474:B8M256P7S1:T:0:5=36:0:0:0:9:8:7:0\n"
         << ":FAV2\nT2:474:B8M256P7S1:T:0:5:0:0:0:9:8:7:0\n";
    write("list", text.str());
    ASSERT_EQ(run("import list first.db"), 0) << err;
    change(
        "UPDATE Service SET Name = 'A;B' WHERE Pid = 40; UPDATE Service SET Name = '' WHERE Pid = "
        "41;"
        "UPDATE FavoriteItem SET isDeleted = 1 WHERE Id % 9 = 0 AND FavoriteId <> 2;"
        "UPDATE FavoriteItem SET ChannelNum = ChannelNum + 1 WHERE ChannelNum > 1 AND FavoriteId ="
        " (SELECT Pid FROM FavoriteList WHERE Uuid = 'user-tv-1');"
        "UPDATE FavoriteList SET MaxChannelNumber = ifnull((SELECT max(ChannelNum) FROM "
        "FavoriteItem"
        " WHERE FavoriteId = FavoriteList.Pid AND isDeleted = 0), 0)",
        "first.db");
    std::string uuids = " " + rows(kLists, "first.db");
    std::replace(uuids.begin(), uuids.end(), ';', ' ');
    output("export --db first.db" + uuids);
    EXPECT_THAT(err, HasSubstr("no place for a | or ; in a name: 4 channels"));
    EXPECT_THAT(out, Not(testing::AnyOf(HasSubstr("::"), HasSubstr("\n#"))));
    write("again", out);
    ASSERT_EQ(run("import again second.db"), 0) << err;
    change("UPDATE Service SET Name = 'A,B' WHERE Pid = 40", "first.db");
    for (char const* content : kContent)
        EXPECT_EQ(rows(content, "first.db"), rows(content, "second.db"));
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
    expect({"import --favourites favourites", 1, nullptr,
            "the file has none of the groups FAV1 to FAV4"});
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

// A receiver's settings in the folder "e2".
class ReceiverTest : public ToolTest {
  protected:
    ReceiverTest() {
        fs::create_directory(folder / "e2");
        write("e2/lamedb",
              "eDVB services /4/\ntransponders\n"
              "00c00000:03fb:0001\n\ts 12604000:27500000:0:3:192:2:0\n/\n"
              "ffff0000:0008:0003\n\tc 394000:6900000:2:5:0:0:0\n/\nend\nservices\n"
              "283d:00c00000:03fb:0001:1:0\nDas Erste\np:\n"
              "000a:ffff0000:0008:0003:2:0\nJazz\np:\n"
              "0007:ffff0000:0008:0003:12:0\nData\np:\nend\n");
        write("e2/bouquets.tv",
              "#NAME x\n#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.tv\" "
              "ORDER BY bouquet\n");
        write("e2/userbouquet.a.tv",
              "#NAME Mine\n#SERVICE 1:0:2:A:8:3:FFFF0000:0:0:0:\n"
              "#SERVICE 1:0:1:283D:3FB:1:C00000:0:0:0:\n");
    }
    void shell(std::string const& commands) {
        ASSERT_EQ(std::system(("cd " + folder.string() + " && " + commands).c_str()), 0)
            << commands;
    }
};

// An archive is its folder; what is no such archive, or a trap, writes nothing.
TEST_F(ReceiverTest, TakesArchivesOfItsSettings) {
    ASSERT_EQ(run("import e2 folder.db"), 0) << err;
    std::string const told = err;
    for (char const* make :
         {"mkdir etc && cp -r e2 etc/enigma2 && ln -s /etc/passwd etc/x && tar czf a etc",
          "tar cf a ./e2", "tar cJf a -C e2 .", "python3 -m zipfile -c a e2"}) {
        fs::remove(folder / "archive.db");
        shell(make);
        ASSERT_EQ(run("import a archive.db"), 0) << make << err;
        EXPECT_THAT(err, testing::ContainsRegex("a:[./a-z2]*lamedb:17: type 12: Data\n"));
        EXPECT_TRUE(content("archive.db") == content("folder.db")) << make;
        fs::remove(folder / "a");
    }
    std::string const kept = content("archive.db");
    struct {
        char const* make;
        char const* reason;
    } const cases[] = {
        {"tar czf b etc && head -c 300 b > a", "a: the archive is cut or damaged"},
        {"python3 -m zipfile -c b e2 && head -c 400 b > a", "a: the archive is cut or damaged"},
        {"tar cf b etc && head -c 3000 b > a", "a: the archive is cut or damaged"},
        {"tar czf a --transform 's,e2/,../,' e2/lamedb", "a: it holds a path upwards, ../lamedb"},
        {"ln -s /etc/passwd lamedb && tar czf a lamedb", "a: lamedb is a link or no file"},
        {"cp -rl e2 f && tar czf a e2 f", "a: f/"},
        {"truncate -s 257M big && tar czf a big e2", "unpacks to more than 256 MiB"},
        {"truncate -s 65M etc/c.tv && tar czf a etc", "etc/c.tv is larger than 64 MiB, as no"},
        {"rm -r f; cp -r e2 f && tar czf a e2 f", "lists in several folders, a:e2/ and a:f/"},
        {"tar czf a set.db", "a: the archive holds neither lamedb nor bouquets"}};
    for (auto const& c : cases) {
        shell(c.make);
        EXPECT_EQ(run("import a archive.db --force"), 1) << c.make;
        EXPECT_THAT(err, HasSubstr(c.reason)) << c.make;
        EXPECT_TRUE(content("archive.db") == kept) << c.make;
    }
}

// Transponders of the same ids differ in the namespace alone, whose low half is the receiver's.
TEST_F(ReceiverTest, GetsItsBouquetsBackByItsOwnNamespaces) {
    write("e2/lamedb",
          "eDVB services /4/\ntransponders\n"
          "ffffab01:0008:0003\n\tc 394000:6900000:2:5:0:0:0\n/\n"
          "ffffcd02:0008:0003\n\tc 410000:6900000:2:5:0:0:0\n/\nend\nservices\n"
          "000a:ffffab01:0008:0003:1:0\nNews\np:\n"
          "000a:ffffcd02:0008:0003:1:0\nNews\np:\n"
          "000b:ffffcd02:0008:0003:1:0\nFilm\np:\nend\n");
    std::string const entries =
        "#NAME Mine\n#SERVICE 1:0:1:A:8:3:FFFFCD02:0:0:0:\n#DESCRIPTION News\n"
        "#SERVICE 1:0:1:B:8:3:FFFFCD02:0:0:0:\n#DESCRIPTION Film\n";
    write("e2/userbouquet.a.tv", entries);
    ASSERT_EQ(run("import e2 first.db"), 0) << err;
    EXPECT_EQ(output("export --db first.db --format enigma2 user-tv-1 --like e2/lamedb"), entries);
    EXPECT_EQ(err, "channellist: 2 of 2 entries have the namespace of e2/lamedb\n");
    fs::create_directory(folder / "again");
    write("again/lamedb", output("export --db first.db --format lamedb all"));
    write("again/userbouquet.a.tv",
          output("export --db first.db --format enigma2 user-tv-1 --like again/lamedb"));
    ASSERT_EQ(run("import again again.db"), 0) << err;
    EXPECT_TRUE(content("again.db") == content("first.db"));
    output("export --format enigma2 FAV1 --like e2/lamedb");
    EXPECT_THAT(err, HasSubstr("e2/lamedb has no transponder for VOX\n"));
    EXPECT_THAT(err, HasSubstr("1 of 4 entries have the namespace of e2/lamedb\n"));
}

// A folder takes no more than an archive, and no file of elsewhere.
TEST_F(ReceiverTest, StaysInItsFolder) {
    write("e2/bouquets.tv",
          "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"../userbouquet.a.tv\" ORDER BY bouquet\n"
          "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"gone.tv\" ORDER BY bouquet\n");
    shell("mv e2/userbouquet.a.tv . && mkfifo e2/userbouquet.b.tv");
    ASSERT_EQ(run("import e2 new.db"), 0) << err;
    EXPECT_THAT(err, HasSubstr("skipped 1: a bouquet outside of the folder\n"
                               "  e2/bouquets.tv:1: ../userbouquet.a.tv\n"));
    EXPECT_THAT(err, HasSubstr("a bouquet that cannot be read\n  e2/bouquets.tv:2: gone.tv\n"));
    shell("truncate -s 40M e2/a.tv e2/b.tv");
    EXPECT_EQ(run("import e2 new.db --force"), 1);
    EXPECT_THAT(err, HasSubstr("e2: larger than 64 MiB, as no receiver's lists are"));
}

// A receiver's folder makes a database and favourites; its bouquets name services of any database.
TEST_F(ReceiverTest, TakesTheListsOfAnEnigma2Receiver) {
    ASSERT_EQ(run("import e2/lamedb new.db"), 0);
    EXPECT_EQ(out, "new.db: 2 channels, 0 groups, 1 lines skipped\n");
    EXPECT_EQ(err,
              "channellist: skipped 1: a service type that is no TV or radio\n"
              "  e2/lamedb:17: type 12: Data\n");
    write("lamedb", output("export --db new.db --format lamedb all"));
    ASSERT_EQ(run("import lamedb again.db"), 0) << err;
    EXPECT_TRUE(content("again.db") == content("new.db")) << "the same list, the same database";
    ASSERT_EQ(run("import e2 new.db --force"), 0) << err;
    EXPECT_EQ(out, "new.db: 2 channels, 1 groups, 1 lines skipped\n");
    write("cut", "eDVB services /4/\ntransponders\n00c00000:03fb:0001\n");
    EXPECT_EQ(run("import cut cut.db"), 1);
    EXPECT_THAT(err, HasSubstr("the file ends in the midst of its transponders\n  cut:3\n"));
    ASSERT_EQ(run("services --db new.db Mine --json"), 1) << "TV and radio are lists of their own";
    EXPECT_EQ(rows("SELECT count(*) FROM Service WHERE Type <> 0", "new.db"), "2");
    EXPECT_EQ(run("import e2/userbouquet.a.tv other.db"), 1);
    EXPECT_THAT(err, HasSubstr("the list names services of another one, which it needs"));
    expect({"import --favourites e2/userbouquet.a.tv", 1, nullptr, "--list names the list to"});
    expect({"import --favourites e2/userbouquet.a.tv --list FAV3", 0, "FAV3: 2 services, 0 not",
            nullptr});
    EXPECT_EQ(fav(3), "1 5;2 1");
    expect({"import --favourites e2", 0, "FAV1: 2 services, 0 not found",
            "FAV1: written from \"Mine\""});
    EXPECT_EQ(fav(1), "1 5;2 1");
    EXPECT_EQ(output("export --format enigma2 FAV1"),
              "#NAME FAV1\n#SERVICE 1:0:2:A:8:3:FFFF0000:0:0:0:\n#DESCRIPTION Jazz\n"
              "#SERVICE 1:0:1:283D:3FB:1:C00000:0:0:0:\n#DESCRIPTION Das Erste\n");
    write("bouquet", out);
    expect({"import --favourites bouquet --list FAV1", 0, "Nothing to change.", nullptr});
    expect({"import --favourites e2 --list FAV4 --dry-run", 0, "FAV4: 2 services", "type 12"});
    expect({"export --format enigma2 FAV1 FAV2", 2, nullptr, "takes one list"});
    expect({"export --format txt FAV1", 2, nullptr, "'txt' is none of vdr, enigma2, lamedb, csv"});
}

// IP channels of a media player, and a scanner's file: both ways the same database.
TEST_F(ToolTest, TakesListsOfOtherProgramsBothWays) {
    write("m3u",
          "#EXTM3U\n#EXTINF:-1 tvg-chno=\"5\" group-title=\"Info, late\",News, at \"five\"\r\n"
          "https://e.org/news?a=1&b=2\n#EXTINF:-1 tvg-chno=\"5\" radio=\"true\",S\xFC"
          "d HD\n#EXTGRP:R\nrtp://239.1.1.1:5000\n#EXTINF:0 tvg-name=\"Named\",\nudp://@239.1:1\n"
          "#EXTINF:0,Foul\n/etc/passwd\n");
    write("dvbv5",
          "[Erste]\n\tSERVICE_ID = 10301\n\tNETWORK_ID = 1\n\tTRANSPORT_ID = 1019\n"
          "\tVIDEO_PID = 101 102\n\tFREQUENCY = 11493750\n\tMODULATION = PSK/8\n\tINNER_FEC = 2/3\n"
          "\tSYMBOL_RATE = 22000000\n\tPOLARIZATION = VERTICAL\n# SOURCE = S13E\n"
          "\tDELIVERY_SYSTEM = DVBS2\n\n[T2]\n\tVCHANNEL = 7\n\tSERVICE_ID = 3\n"
          "\tAUDIO_PID = 5\n\tFREQUENCY = 474000000\n\tBANDWIDTH_HZ = 8000000\n\tSTREAM_ID = 9\n"
          "\tMODULATION = QAM/64\n\tDELIVERY_SYSTEM = DVBT2\n\n[Air]\n\tFREQUENCY = 1\n"
          "\tDELIVERY_SYSTEM = ATSC\n");
    struct {
        char const* format;
        char const* rejected;
        char const* content;
    } const cases[] = {
        {"m3u", "skipped 1: no network address\n  m3u:10: /etc/passwd\n",
         "5|News, at \"five\"|1|https://e.org/news?a=1&b=2;1|S\u00FCd HD|2|rtp://239.1.1.1:5000;"
         "2|Named|1|udp://@239.1:1"},
        {"dvbv5", "skipped 1: no delivery system that a set receives\n  dvbv5:24: Air\n",
         "1|Erste|1|;7|T2|2|"}};
    for (auto const& c : cases) {
        ASSERT_EQ(
            run(std::string("import ") + c.format + " new.db" + (&c != cases ? " --force" : "")), 0)
            << err;
        EXPECT_THAT(err, HasSubstr(c.rejected));
        EXPECT_EQ(rows("SELECT ChannelNum, s.Name, MediaType, NetworkUrl FROM FavoriteItem JOIN"
                       " Service s ON s.Pid = FavoriteItem.ServiceId JOIN DvbService d ON"
                       " d.ServiceId = s.Pid"
                       " WHERE FavoriteId = 1 ORDER BY FavoriteItem.Id",
                       "new.db"),
                  c.content);
        write("again", output(std::string("export all --db new.db --format ") + c.format));
        ASSERT_EQ(run(std::string("import again again.db") + (&c != cases ? " --force" : "")), 0)
            << err;
        EXPECT_EQ(run("diff new.db again.db"), 0) << err;
        EXPECT_THAT(out, testing::ContainsRegex("No list and no service|all lists( +0){7}\n"));
    }
    EXPECT_EQ(rows("SELECT Satellite, Frequency, SymbolRate, ModulationCoding, Polarization FROM"
                   " DvbS2Tuner UNION SELECT Bandwidth, PlpId, Frequency, Constellation, 0 FROM"
                   " DvbT2Tuner",
                   "again.db"),
              "8|9|474000|64|0;1130|11493750|22000|13|2");
    change("UPDATE Service SET Name = '<1> & 2' WHERE Pid = 1");
    EXPECT_THAT(output("export --format html FAV1 FAV2"),
                testing::AllOf(HasSubstr("<li><b>1</b> <span>&lt;1&gt; &amp; 2</span></li>"),
                               HasSubstr("<h2>FAV2</h2>")));
}

TEST_F(ToolTest, TakesATableToASpreadsheetAndBack) {
    change(
        "UPDATE Service SET Name = 'A, \"B\"' WHERE Pid = 1; UPDATE FavoriteItem SET isDeleted = 1"
        " WHERE FavoriteId = 11 AND ServiceId = 3");
    EXPECT_EQ(output("export --format csv FAV1"),
              "Number,State,Name,Triplet,Key,Kind,Delivery,Frequency\r\n"
              "1,shown,\"A, \"\"B\"\"\",1-1019-10301,1,TV,satellite,12604000\r\n"
              "2,shown,ZDF HD,1-1011-11110,2,TV,satellite,11493750\r\n"
              "3,hidden,VOX,1-1089-12060,3,TV,satellite,11953500\r\n"
              "5,shown,Jazz,3-8-10,5,radio,cable,394000\r\n");
    write("list.csv", out);
    expect({"edit FAV1 --from list.csv", 0, "Nothing to change.", nullptr});
    change("UPDATE Service SET Name = '=1+1' WHERE Pid = 1");
    write("list.csv", output("export --format csv FAV1"));
    EXPECT_THAT(out, HasSubstr("1,shown,'=1+1,"));
    expect({"edit FAV1 --from list.csv", 0, "Nothing to change.", nullptr});
    change("UPDATE Service SET Name = 'A, \"B\"' WHERE Pid = 1");
    write("list.csv",
          "\xEF\xBB\xBFName,number,key\r\nJazz,7,\r\n\"A, \"\"B\"\"\",,1\r\nテレビ東京,,\r\n");
    expect({"edit FAV1 --from list.csv", 0, "FAV1  added", nullptr});
    EXPECT_EQ(fav(1), "7 5;8 1;9 4");
    for (std::string const separator : {";", "\t"}) {
        write("list.csv", "\"Key\"" + separator + "Number\r\n5" + separator + "4\r\n");
        expect({"edit FAV1 --from list.csv --dry-run", 0, "Jazz", nullptr});
    }
    write("list.csv", "Number,Name\nx,Jazz\n1,\n2,nobody\n");
    expect({"edit FAV1 --from list.csv", 1, nullptr, "list.csv:2: the number or key is none"});
    EXPECT_THAT(err,
                HasSubstr("list.csv:3: the row names no service\nlist.csv:4: no service fits"));
    // What an open quote swallows would leave the list.
    write("list.csv", "Number,Name,Kind\n\n1,Jazz,\"TV\n2,News,TV\n");
    expect({"edit FAV1 --from list.csv", 1, nullptr, "list.csv:2: a quote is not closed"});
    write("list.csv", "Number,Name\n\n1,5\" TV\n");
    expect({"edit FAV1 --from list.csv", 1, nullptr, "list.csv:3: a quote stands inside"});
}

}  // namespace
