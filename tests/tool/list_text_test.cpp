// list and edit --from: a list as a text, there and back.
#include "tool_process.h"

using testing::HasSubstr;

namespace {

constexpr char kFav1[] =
    "1  shown   Das Erste  1-1019-10301  id:1\n"
    "2  shown   ZDF HD     1-1011-11110  id:2\n"
    "3  shown   VOX        1-1089-12060  id:3\n"
    "5  shown   Jazz       3-8-10        id:5\n";

TEST_F(ToolTest, PrintsEveryKindOfListAndTakesItBackUnchanged) {
    EXPECT_THAT(output("list FAV1"), testing::EndsWith(kFav1));
    EXPECT_THAT(output("list FAV2"), HasSubstr("\n1  hidden  VOX  1-1089-12060  id:3\n"));
    EXPECT_THAT(output("list u-av"), HasSubstr("\n1  shown   HDMI 1  -  id:7\n"));
    std::string const before = content("set.db");
    for (std::string const list : {"FAV1", "FAV2", "FAV3", "u-av", "Astra", "all"}) {
        write("text", output("list " + list));
        EXPECT_THAT(output("edit " + list + " --from text"), HasSubstr("Nothing to change."))
            << list;
    }
    EXPECT_EQ(content("set.db"), before);
}

// Of kFav1, each text is what `list` prints with its lines edited.
TEST_F(ToolTest, BringsAFavListToItsText) {
    std::string const one = "1 shown Das Erste 1-1019-10301 id:1\n";
    std::string const two = "2 shown ZDF HD 1-1011-11110 id:2\n";
    std::string const three = "3 shown VOX 1-1089-12060 id:3\n";
    std::string const five = "5 shown Jazz 3-8-10 id:5\n";
    const struct {
        std::string text;
        char const* fav1;
    } cases[] = {
        {one + two + five + three, "1 1;2 2;3 5;5 3"},      // moved
        {five + one + two + three, "1 5;2 1;3 2;5 3"},      // to the top
        {one + "id:5\n" + two + three, "1 1;2 5;3 2;4 3"},  // without its number
        {one + two + three + "2 shown Jazz 3-8-10 id:5\n", "1 1;2 5;3 2;4 3"},  // another number
        {"# c\n\n" + two + one, "1 2;2 1"},                                     // lines deleted
        {one + two + three + five + "テレビ東京\n", "1 1;2 2;3 3;5 5;6 4"},     // added by name,
        {one + "4-8-11110\n" + two + three + five, "1 1;2 6;3 2;4 3;5 5"},      // by triplet,
        {one + two + three + "4 id:4\n" + five, "1 1;2 2;3 3;4 4;5 5"},         // by key
        {one + "2 hidden ZDF HD id:2\r\n" + three + five, "1 1;2 2 deleted;3 3;5 5"},
        {"VOX\nJazz\n", "1 3;2 5"},
        {"\xEF\xBB\xBFvox\n", "1 3"},  // of a Windows editor, in whatever case
        {one + two + "3 shown Other 1-1089-12060 id:3\n" + five, "1 1;2 2;3 3;5 5"},
        // A table's numbers hold, and so does what it does not tell.
        {"Number,Key\n5,5\n1,1\n3,3\n2,2\n", "1 1;2 2;3 3;5 5"},
        {"Number,Key,State\n7,5,HIDDEN\n1,1,\n", "1 1;7 5 deleted"},
        // Keys of another scan: triplets and names are the same.
        {"1 shown VOX 1-1089-12060 id:1\n2 shown 新 2-7-9 id:99\n", "1 3;2 4"},
    };
    std::string const before = content("set.db");
    for (auto const& c : cases) {
        write("text", c.text);
        output("edit FAV1 --from text --dry-run");
        EXPECT_EQ(content("set.db"), before);
        EXPECT_EQ(run("edit FAV1 --db set.db --from -", "sh -c '\"$0\" \"$@\" <text'"), 0) << err;
        EXPECT_EQ(fav(1), c.fav1) << c.text;
        write("set.db", before);
    }
    ott({2, 4});
    write("text", "Jazz\nVOX\n3 id:1\n");
    output("edit FAV1 --from text");
    EXPECT_EQ(fav(1), "1 5;3 1;5 3") << "OTT channels keep their numbers";
}

// Names, triplets and numbers of any kind stay as they are.
TEST_F(ToolTest, TakesFoulListsBackUnchanged) {
    char const* const cases[] = {
        "UPDATE DvbService SET Oid = -5",
        "UPDATE DvbService SET Tid = 99999999999",
        "UPDATE Service SET Name = '   '",
        "UPDATE Service SET Name = ''",
        "UPDATE Service SET Name = 'shown 5 x' || char(8238) || char(9) || '  -  id:3'",
        "UPDATE Service SET Name = '1-2-3'",
        "UPDATE FavoriteItem SET ChannelNum = NULL",
        "UPDATE FavoriteItem SET ChannelNum = 'x'",
        "UPDATE FavoriteItem SET ChannelNum = -7"};
    std::string const before = content("set.db");
    for (char const* sql : cases) {
        change(sql);
        std::string const foul = content("set.db");
        for (std::string const print : {"list ", "export --format csv "})
            for (std::string const list : {"FAV1", "Astra"}) {
                write("text", output(print + list));
                EXPECT_THAT(out, testing::Not(HasSubstr("\xE2\x80\xAE")));
                EXPECT_EQ(run("edit --db set.db " + list + " --from text"), 0) << sql << err;
                EXPECT_EQ(out, "Nothing to change.\n") << sql << print << list;
            }
        EXPECT_EQ(content("set.db"), foul) << sql;
        write("set.db", before);
    }
}

TEST_F(ToolTest, KeepsEntriesOfOtherListsThatHaveNoLine) {
    write("text", "VOX\n");
    output("edit Astra --from text");
    EXPECT_THAT(err, HasSubstr("Astra: 1 entries have no line; they stay as they are"));
    EXPECT_EQ(rows("SELECT ServiceId, ChannelNum FROM FavoriteItem WHERE FavoriteId = 21"),
              "1|1;3|2");
    write("text", "1 id:3\n");
    expect({"edit Astra --from text", 1, nullptr, "text:1: number 1 is that of Das Erste, which"});
    write("text", "1 hidden HDMI 1 - id:7\n");
    expect({"edit u-av --from text", 0, "hidden", nullptr});
}

TEST_F(ToolTest, TellsEverythingWrongInATextAtOnce) {
    write("text",
          "1 CNN\n2 ZDF HD\n3 id:3\n4 VOX\n8 id:1\n8 id:5\n99999999999 id:2\nid:77\n0 id:2\n"
          "9 hiden テレビ東京 2-7-9\n7\n12\nJaz\n");
    std::string const before = content("set.db");
    output("edit FAV1 --from text", 1);
    EXPECT_EQ(err,
              "channellist: nothing is written:\n"
              "text:1: no service fits 'CNN'\n"
              "text:2: several services are meant by 'ZDF HD': id:2 (ZDF HD, satellite 4, 11493 "
              "MHz, 1-1011-11110, number 2), id:6 (ZDF HD, cable, 394 MHz, 4-8-11110, number 6)\n"
              "text:4: VOX stands in line 3 already\n"
              "text:6: number 8 is given in line 5, too\n"
              "text:7: the channel number is too large\n"
              "text:8: no service has the key id:77\n"
              "text:9: channel numbers begin at 1\n"
              "text:10: 'hiden' is neither shown nor hidden\n"
              "text:11: no service fits '7'\n"
              "text:12: no service fits '12'\n"
              "text:13: no service fits 'Jaz'; did you mean 'Jazz'?\n"
              "--skip-missing leaves out what no service fits\n");
    write("text", "CNN\nJazz\n9-9-9\nid:77\n1 VOX\n");
    expect({"edit FAV4 --from text --skip-missing -n", 0, "added",
            "channellist: text:1: left out: the database has no service for 'CNN'\n"
            "channellist: text:3: left out: the database has no service for '9-9-9'\n"
            "channellist: text:4: left out: the database has no service for 'id:77'\n"});
    for (char const* text : {"", "\n \n", "# nothing\n", "Number,Key\n"}) {
        write("text", text);
        expect(
            {"edit FAV1 --from text", 1, nullptr, "text: no service is named; nothing is written"});
    }
    for (char const* input : {"<&-", "</dev/null"})
        EXPECT_EQ(run("--db set.db edit FAV1 --from -",
                      "sh -c '\"$0\" \"$@\" " + std::string(input) + "'"),
                  1)
            << input;
    expect({"edit FAV1 --from text --empty -n", 0, "removed", nullptr});
    write("text", "Number,Key,State\n1,1,hiden\n");
    expect({"edit FAV1 --from text", 1, nullptr, "the state 'hiden' is neither shown nor hidden"});
    write("text", std::string("a\0b\nJazz\n", 9));
    expect({"edit FAV3 --from text", 1, nullptr, "text:1: no service fits 'a\\x00b'\n"});
    expect({"edit Astra --from text", 1, nullptr, "Jazz"});
    expect({"edit FAV1 --from none", 1, nullptr, "cannot read none"});
    expect({"edit FAV1 hide 1 --from text", 2, nullptr, "operations or --from, not both"});
    EXPECT_EQ(content("set.db"), before);
}

// The editor is a script; what it does in its first run, and in the second.
TEST_F(ToolTest, OpensAListInTheEditorUntilItIsRight) {
    const struct {
        char const* first;
        char const* second;
        int code;
        char const* out;
        char const* err;
        char const* fav1;
    } cases[] = {
        {"true", "", 0, "Nothing to change.", "should it still be open", "1 1;2 2;3 3;5 5"},
        {"sleep 1.1", "", 0, "Nothing to change.", "", "1 1;2 2;3 3;5 5"},
        {": >\"$1\"", "", 0, "Nothing to change.", "", "1 1;2 2;3 3;5 5"},
        {"echo >\"$1\"", "", 1, "", "names no service; nothing is written", "1 1;2 2;3 3;5 5"},
        {"rm \"$1\"", "", 1, "", "cannot read", "1 1;2 2;3 3;5 5"},
        // Whoever else writes to the folder lays no link that the next round writes through.
        {"ln -s $PWD/set.db \"$1.part\"; echo CNN >>\"$1\"", "sed -i /CNN/d \"$1\"", 0, "Nothing",
         "", "1 1;2 2;3 3;5 5"},
        {"sed -i /VOX/d \"$1\"", "", 0, "FAV1  removed       3", "", "1 1;2 2;5 5"},
        {"echo CNN >>\"$1\"",
         "grep -q '^#! no service fits' \"$1\" && sed -i '/^CNN/d;/VOX/d' \"$1\"", 0, "removed", "",
         "1 1;2 2;5 5"},
        {"echo CNN >\"$1\"", "true", 1, "", "text:1: no service fits 'CNN'", "1 1;2 2;3 3;5 5"},
        {"false", "", 1, "", "failed; nothing is written", "1 1;2 2;3 3;5 5"},
        // What others write meanwhile is merged, and told,
        {"sed -i /VOX/d \"$1\"; " TOOL " --db set.db edit FAV1 hide Jazz add id:4 at 4 >/dev/null",
         "", 0, "removed", "others: Jazz hidden", "1 1;2 2;4 4;5 5 deleted"},
        {"echo 'id:4' >>\"$1\"; " TOOL " --db set.db edit FAV1 add id:6 at 6 >/dev/null", "", 0,
         "added", "6 is taken by now", "1 1;2 2;3 3;5 5;6 6;7 4"},
        {"sed -i '/VOX/d;s/^2 /7 /' \"$1\"; " TOOL " --db set.db edit FAV1 remove Jazz >/dev/null",
         "", 0, "moved", "you: ZDF HD moved from 2 to 7", "1 1;7 2"},
        // and where both changed the same entry, the editor decides.
        {"sed -i '/VOX/d;s/^2 /7 /' \"$1\"; " TOOL " --db set.db edit FAV1 move 2 to 9 >/dev/null",
         "grep -q '^#! ZDF HD: others moved to 9; you moved to 7' \"$1\" &&"
         " grep -q '^#  7 *shown *ZDF HD' \"$1\" && sed -i 's/^7 /8 /' \"$1\"",
         0, "moved", "others: ZDF HD moved from 2 to 9", "1 1;5 5;8 2"},
        {"sed -i /VOX/d \"$1\"; " TOOL " --db set.db edit FAV1 move 3 to 4 >/dev/null", "true", 1,
         "", "your text is kept in", "1 1;2 2;4 3;5 5"},
        {"sed -i /VOX/d \"$1\"; cp set.db new.db; mv new.db set.db", "", 1, "", "replaced",
         "1 1;2 2;3 3;5 5"},
        // An editor that nobody sits at changes its text in every round.
        {"echo CNN >>\"$1\"", "echo BBC >>\"$1\"", 1, "", "no service fits 'BBC'",
         "1 1;2 2;3 3;5 5"},
    };
    std::string const before = content("set.db");
    for (auto const& c : cases) {
        write("ed", "if [ -e again ]; then :\n" + std::string(c.second) + "\nelse\n>again\n" +
                        c.first + "\nfi\n");
        EXPECT_EQ(run("--db set.db edit FAV1", "TMPDIR=$PWD VISUAL= EDITOR='sh ./ed'"), c.code);
        EXPECT_THAT(out, HasSubstr(c.out)) << c.first;
        EXPECT_THAT(err, HasSubstr(c.err)) << c.first;
        bool const isKept = (c.code != 0 && std::string(c.err) != "cannot read") ||
                            std::string(c.err) == "should it still be open";
        EXPECT_EQ(err.find("your text is kept in ") != std::string::npos, isKept) << c.first << err;
        EXPECT_EQ(fav(1), c.fav1) << c.first;
        write("set.db", before);
        std::filesystem::remove(folder / "again");
    }
}

}  // namespace
