#include "tool_process.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

using namespace channel_database;
namespace fs = std::filesystem;

namespace {

void fill(ChannelDatabase& d) {
    auto const all = d.list("tamun.sl2.servicelist$all", 1).name("$all").uuid("u-all");
    auto const av = d.list("tamun.sl2.servicelist$av", 2).name("$av").uuid("u-av");
    auto const fav1 = d.list("User.tvFAV1", 11).name("Mine").uuid("u-fav1");
    auto const fav2 = d.list("User.tvFAV2", 12).name("FAV2").uuid("u-fav2");
    d.list("User.tvFAV3", 13).name("FAV3").uuid("u-fav3");
    d.list("User.tvFAV4", 14).name("FAV4").uuid("u-fav4").updateTag(65535);
    auto const astra = d.list("servicelist://tamun.Astra 19.2°E", 21)
                           .name("Astra")
                           .uuid("u-astra")
                           .attributes(544);

    Service const services[] = {
        d.dvbs("Das Erste", 1).triplet(1, 1019, 10301).frequency(12604000).nitId(1),
        d.dvbs2("ZDF HD", 2).triplet(1, 1011, 11110).hdtv(),
        d.dvbs("VOX", 3).triplet(1, 1089, 12060).encrypted().bissKey("1234567890AB"),
        d.dvbt("テレビ東京", 4).triplet(2, 7, 9).set("ParentalLock", 1),
        d.dvbc("Jazz", 5).triplet(3, 8, 10).radio(),
        d.dvbc("ZDF HD", 6).triplet(4, 8, 11110),
    };
    Id number = 0;
    for (Service const& service : services)
        d.put(all, service, ++number);
    for (Id const pid : {1, 2, 3, 5}) {
        d.put(fav1, pid, pid);
        d.run("UPDATE Service SET FavTag = 1 WHERE Pid = ?", {pid});
    }
    d.run("UPDATE FavoriteItem SET Visible = 0 WHERE ServiceId = 5");
    d.put(fav2, 3, 1).deleted();
    d.run("UPDATE Service SET FavTag2 = 1 WHERE Pid = 3");
    d.put(astra, 1, 1);
    d.put(astra, 3, 2);
    d.put(av, d.input("hdmi1", 7).uuid("u-hdmi1"), 1);
    d.lcn(1, astra, 101);
}

}  // namespace

ToolTest::ToolTest() {
    std::string pattern = (fs::temp_directory_path() / "tool-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    ChannelDatabase database((folder / "set.db").string());
    fill(database);
    fs::create_directory(folder / "bin");
    write("bin/sync", "#!/bin/sh\n: >'" + folder.string() + "/synced'\n");
    fs::permissions(folder / "bin/sync", fs::perms::owner_all);
}

int ToolTest::run(std::string const& arguments, std::string const& settings) {
    // A sanitizer's report must not look like a failure of the tool's own.
    std::string const command = "cd '" + folder.string() +
                                "' && PATH=$PWD/bin:$PATH HOME=$PWD ASAN_OPTIONS=exitcode=99"
                                " UBSAN_OPTIONS=exitcode=99 " +
                                settings + " " TOOL " " + arguments + " >out 2>err </dev/null";
    int const status = std::system(command.c_str());
    out = content("out");
    err = content("err");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string ToolTest::output(std::string const& arguments, int code) {
    EXPECT_EQ(run("--db set.db " + arguments), code) << arguments << "\n" << out << err;
    return out;
}

void ToolTest::expect(Invocation const& expected) {
    output(expected.arguments, expected.code);
    auto const check = [&](char const* part, std::string const& text) {
        if (part == nullptr)
            EXPECT_EQ(text, "") << expected.arguments;
        else
            EXPECT_THAT(text, testing::HasSubstr(part)) << expected.arguments;
    };
    check(expected.out, out);
    check(expected.err, err);
}

void ToolTest::change(std::string const& sql, std::string const& file) {
    ChannelDatabase database((folder / file).string(), Indexes::PrimaryKeysOnly);
    sqlite3_exec(database.connection(), sql.c_str(), nullptr, nullptr, nullptr);
    ASSERT_EQ(sqlite3_errcode(database.connection()), SQLITE_OK)
        << sql << ": " << sqlite3_errmsg(database.connection());
}

std::string ToolTest::rows(std::string const& sql, std::string const& file) {
    sqlite3* opened = nullptr;  // the file keeps its journal mode
    sqlite3_open((folder / file).c_str(), &opened);
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> const connection(opened, sqlite3_close_v2);
    ChannelDatabase database(opened, Indexes::PrimaryKeysOnly);
    std::string text;
    for (auto const& row : database.rows(sql)) {
        text += text.empty() ? "" : ";";
        for (std::string const& value : row)
            text += (&value == row.data() ? "" : "|") + value;
    }
    return text;
}

std::string ToolTest::fav(int index) {
    return rows(
        "SELECT ChannelNum || ' ' || ServiceId || CASE isDeleted WHEN 0 THEN '' ELSE ' deleted' END"
        " FROM FavoriteItem WHERE FavoriteId = " +
        std::to_string(10 + index) + " ORDER BY ChannelNum, Id");
}

void ToolTest::write(std::string const& file, std::string const& text) {
    std::ofstream(folder / file) << text;
}

void ToolTest::ott(std::initializer_list<Id> positions) {
    ChannelDatabase database((folder / "zentova_DB_V1.3.db").string());
    database.run("CREATE TABLE SQL_OTTFavChannels (favName TEXT, favIndex INTEGER)");
    for (Id const position : positions)
        database.run("INSERT INTO SQL_OTTFavChannels VALUES ('FAV1', ?)", {position});
}

std::string ToolTest::content(std::string const& file) {
    std::ostringstream text;
    text << std::ifstream(folder / file).rdbuf();
    return text.str();
}

bool ToolTest::synced() { return fs::remove(folder / "synced"); }
