// The folder list: which lists, their order, and from one raw folder row to the result row; and the
// console entry that prints it.
#include "support/test_database.h"

namespace {

using namespace testing;

class FolderList : public TestDatabase {
  protected:
    static std::string names() { return column(dbaccess::select_Folders(), 0); }
    static ResultRow raw(std::string const& creator, std::string const& attributes,
                         std::string const& name = "name") {
        return {"1", "uuid", name, creator, attributes, "61", "9"};
    }
    static std::string converted(ResultRow const& row, std::vector<int> const& fields) {
        m_flfield = fields;
        ResultSet rows;
        EXPECT_EQ(dbaccess::computeFolder(7, row, &rows), 0);
        return joined(rows);
    }
    static std::string printed(int argc) {
        char program[] = "program", a[] = "a", b[] = "b";
        char* argv[] = {program, a, b, nullptr};
        internal::CaptureStdout();
        EXPECT_EQ(dbaccess::main0(argc, argv), 0);
        return internal::GetCapturedStdout();
    }
};

// clang-format off

TEST_F(FolderList, OrderOfTheKinds) {
    std::pair<int, char const*> const lists[] = {
        {350, "User.tv later than the AV list"}, {150, "User.tv"}, {12, "user.3"}, {4, "B"},
        {5, "a"}, {1, "tamun.sl2.servicelist$all"}, {2, "tamun.sl2.servicelist$av"},
        {7, "x 0x10000 y"}, {3, "servicelist://tamun.dvbt 0x10000"},
        {6, "SERVICELIST://TAMUN.DVBC"},
        {8, "servicelist://tamun.dvbip.1"}, {9, "servicelist://tamun.analog.x"},
        {10, "servicelist://tamun.home"}, {11, "servicelist://tamun.dvb.65536"}};
    for (auto const& [pid, creator] : lists)
        database().list(creator, pid);
    EXPECT_EQ(names(),
              "servicelist://tamun.home;servicelist://tamun.analog.x;"
              "servicelist://tamun.dvbt 0x10000;SERVICELIST://TAMUN.DVBC;a;B;"
              "servicelist://tamun.dvb.65536;x 0x10000 y;user.3;User.tv;"
              "tamun.sl2.servicelist$av;User.tv later than the AV list");
    database().run("DELETE FROM FavoriteList WHERE Pid NOT IN (1, 8)");
    EXPECT_EQ(names(), "");
    EXPECT_EQ(texts(1).back(), "folder.size:0");
}

TEST_F(FolderList, OrderWithinAKind) {
    auto const add = [&](char const* creator, int network, int bouquet) {
        database().list(creator).networkId(network).batId(bouquet);
    };
    add("61 b5", 61, 5);
    add("61 b3", 61, 3);
    add("other", 60, 9);
    add("servicelist://tamun.a.radio", -1, 9);
    add("servicelist://tamun.z.tv", -1, 9);
    add("servicelist://tamun.b.tv", 1, 9);
    EXPECT_EQ(names(),
              "servicelist://tamun.z.tv;servicelist://tamun.a.radio;other;"
              "servicelist://tamun.b.tv;61 b3;61 b5");
}

TEST_F(FolderList, LcnRowsAddThirtyTwoOnceExceptInFiveNetworks) {
    std::tuple<channel_database::Value, int, int, char const*> const cases[] = {
        // network id, attributes, LCN rows, capability code
        {1, 0, 0, "63"}, {1, 0, 1, "50"}, {1, 0, 2, "50"}, {52, 0, 1, "50"}, {nullptr, 0, 1, "63"},
        {14, 0, 1, "63"}, {51, 0, 1, "63"}, {68, 0, 1, "63"}, {79, 0, 1, "63"}, {80, 0, 1, "63"},
        {51, 0x7fe0, 1, "18"}, {1, 0x7fe0, 1, "63"}};  // added, not or-ed: the word is negative
    auto list = database().list("any");
    for (auto const& [network, attributes, lcnRows, capability] : cases) {
        database().run("DELETE FROM Lcn");
        for (int row = 0; row < lcnRows; ++row)
            database().lcn(7, list, row);
        list.networkId(network).attributes(attributes);
        EXPECT_EQ(column(dbaccess::select_Folders(), 4), capability);
    }
}

TEST_F(FolderList, AttributeWord) {
    std::tuple<char const*, unsigned int, unsigned int> const cases[] = {
        {"User.tv", 3, 0x30005}, {"User.tvFAV1", 0, 0x5}, {"User.radio", 0, 0x9},
        {"User.tv.magazine$sport.1", 0, 0x5}, {"User.radio.magazine$", 0, 0x9},
        {"User.", 1, 0x10000}, {"user.tv", 0, 0}, {"", 7, 0x70000}, {"", 0xffff8001, 0x80010000},
        {"servicelist://tamun.analog", 0, 0x140}, {"servicelist://tamun.analog2", 0, 0x40},
        {"servicelist://tamun.dvb.65536", 0, 0x42}, {"servicelist://tamun.dvb.65536.x", 0, 0x42},
        {"servicelist://tamun.dvbt", 1, 0x10040}, {"servicelist:", 0, 0x40}, {"servicelist", 0, 0},
        {"tamun.sl2.servicelist$all", 0, 0x10}, {"tamun.sl2.servicelist$avx", 0, 0x20},
        {"tamun.sl2.servicelist$a", 0, 0}};
    for (auto const& [creator, attributes, word] : cases) {
        EXPECT_EQ(attr(creator, attributes), word) << creator;
        EXPECT_EQ(converted(raw(creator, "0"), {2}), std::to_string(word & 0xffff));
    }
}

TEST_F(FolderList, CapabilityCodes) {
    char const* const cases[][2] = {
        {"0", "63"}, {"15", "63"}, {"16", "18"}, {"272", "48"}, {"400", "18"}, {"128", "18"},
        {"256", "50"}, {"32", "50"}, {"48", "18"}, {"32768", "63"}, {"-1", "63"}, {"65536", "63"},
        {"+16", "18"}, {"32752", "18"}, {"-2147483648", "63"}};
    for (auto const& [attributes, code] : cases)
        EXPECT_EQ(converted(raw("any", attributes), {4}), code) << attributes;
    EXPECT_THAT(texts(4000), ElementsAre("list doesn't have edit function."));
}

TEST_F(FolderList, EveryFieldIdHasItsText) {
    EXPECT_EQ(converted(raw("User.tvFAV1FAV", "16"), {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0}),
              "|name|uuid|5||18|61|/data/servicelist/icons/|0|9|FAV1FAV||name");
    EXPECT_EQ(converted(raw("servicelist://tamun.dvbt", "0"), {9, 9}), "|");
    EXPECT_EQ(converted(raw("", "0"), {}), "");
    std::pair<char const*, char const*> const captions[] = {
        {"$all", "#3052"}, {"$av", "#3051"}, {" $all", " $all"}, {"$ALL", "$ALL"}, {" x ", " x "}};
    for (auto const& [name, caption] : captions)
        EXPECT_EQ(converted(raw("c", "0", name), {0}), caption);
    database().list("User.tvFAV1").networkId(nullptr).updateTag(nullptr).uuid(nullptr);
    m_flfield.assign(std::begin(fl), std::end(fl));
    EXPECT_EQ(joined(dbaccess::select_Folders()), "User.tvFAV1||5||63||FAV1|");
}

TEST_F(FolderList, AListWhoseAttributesAreNoNumberIsLeftOut) {
    database().list("a").uuid("u1");
    auto list = database().list("b").uuid("u2");
    database().list("c");
    std::string const reason = "list b (uuid u2) left out: column Attributes holds no number: ";
    std::pair<channel_database::Value, char const*> const cases[] = {
        {nullptr, "''"}, {2147483648, "'2147483648'"}, {-2147483649, "'-2147483649'"}};
    for (auto const& [attributes, text] : cases) {
        list.attributes(attributes);
        platform::state.messages.clear();
        EXPECT_EQ(names(), "a;c");
        EXPECT_THAT(texts(), ElementsAre(reason + text));
    }
    list.attributes(-2147483648);
    EXPECT_EQ(names(), "a;b;c");
}

TEST_F(FolderList, ShortAndMissingRowsAreRefused) {
    ResultSet rows;
    char* values[] = {nullptr};
    for (int const refused : {dbaccess::computeFolder(6, ResultRow(6, "0"), &rows),
                              dbaccess::computeFolder(8, ResultRow(7, "0"), &rows),
                              dbaccess::computeFolder(-1, ResultRow(7, "0"), &rows),
                              dbaccess::folder_callback(&rows, 1, nullptr, values),
                              dbaccess::folder_callback(&rows, 1, values, nullptr),
                              dbaccess::folder_callback(&rows, -1, values, values)})
        EXPECT_EQ(refused, -1);
    EXPECT_EQ(joined(texts(), "; "),
              "flrow.size is wrong 6; flrow.size is wrong 7; flrow.size is wrong 7; names or values "
              "NULL !!; names or values NULL !!; flrow.size is wrong 0; folder_callback Failed!!");
    EXPECT_THAT(rows, IsEmpty());
}

TEST_F(FolderList, ABusyDatabaseIsTriedFiftyTimesAndOtherFailuresOnce) {
    database().list("a");
    EXPECT_EQ(names(), "a");
    DatabaseLock lock(file());
    platform::state.onSleep = [&](int count) { count == 99 ? lock.release() : void(); };
    EXPECT_EQ(names(), "");
    EXPECT_EQ(platform::state.sleptMicroseconds, 5000000U);
    EXPECT_EQ(texts(), repeated(50, {"SQL error res:5", kTryAgain}));
    EXPECT_EQ(names(), "a");
    EXPECT_EQ(platform::state.sleepCount, 99);
    database().run("DROP TABLE Lcn");
    platform::state.messages.clear();
    EXPECT_EQ(names(), "");
    EXPECT_EQ(platform::state.sleepCount, 99);
    EXPECT_THAT(texts(), ElementsAre("SQL error res:1"));
}

TEST_F(FolderList, IsPrintedOnTheConsole) {
    EXPECT_EQ(printed(0), "argc=0\nend\n");
    database().list("servicelist://tamun.dvbt").uuid("a").name("100%");
    platform::state.messages.clear();
    std::string const folder = "[item 0:col 0]:100% [item 0:col 1]:a [item 0:col 2]:64 "
                               "[item 0:col 3]: [item 0:col 4]:63 \n";
    EXPECT_EQ(printed(3), folder + "argc=3\nend\n");
    EXPECT_THAT(texts(1), IsSupersetOf({"called,favoriteUuId:a ", "called,favoriteUuId:b "}));
    platform::state.messages.clear();
    EXPECT_EQ(printed(2), folder + "argc=2\nend\n");
    EXPECT_THAT(texts(1), Not(Contains("called,favoriteUuId:b ")));
}

// clang-format on

}  // namespace
