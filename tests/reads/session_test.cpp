// Opening on demand, the busy handler, the traces and the cost of a disabled message.
#include <sstream>

#include "support/test_database.h"

namespace {

using namespace testing;

std::string serviceCount() { return std::to_string(dbaccess::get_dbservices("list-1").size()); }
std::string folderCount() { return std::to_string(dbaccess::select_Folders().size()); }
template <typename Found, typename Call>
std::string answer(Found found, Call call) {
    int const code = call(&found);
    return (std::ostringstream() << code << " " << found).str();
}
std::string attributes() {
    return answer(
        77U, [](auto word) { return dbaccess::getFavriteAttributes("list-1", word); });
}
std::string anchor() {
    return answer(
        std::string(), [](auto uuid) { return dbaccess::getAstraAnchorService(*uuid); });
}
std::string scrambled() {
    return answer(
        77, [](auto flag) { return dbaccess::checkAstraScrambleService(*flag); });
}
std::string bissKey() {
    bisskey = "of an earlier call";
    return dbaccess::getBissKeyFromService("s");
}
std::string edit() {
    return std::to_string(dbaccess::onServiceListEdit({"list-1", "0", "1", "1"}));
}

// The entry points that open, get_dbservices last: it alone keeps the handle of a failed open.
const struct EntryPoint {
    char const* name;
    unsigned int module;
    std::string (*call)();
    char const* answerWhenClosed;
} kEntryPoints[] = {
    {"select_Folders", 0xda, folderCount, "0"},
    {"getFavriteAttributes", 0xda, attributes, "-2 77"},
    {"getAstraAnchorService", 0xda, anchor, "-2 "},
    {"checkAstraScrambleService", 0xda, scrambled, "-2 77"},
    {"getBissKeyFromService", 0xb4, bissKey, "NULL"},
    {"onServiceListEdit", 0xda, edit, "-2"},
    {"get_dbservices", 0xda, serviceCount, "0"},
};

class Session : public TestDatabase {
  protected:
    void SetUp() override {
        TestDatabase::SetUp();
        auto list = database().list("servicelist://tamun.dvbt");
        database().put(list, database().dvbt("Eins"), 1);
    }

    static std::vector<std::string> trace() {
        std::vector<std::string> lines;
        for (platform::Message const& m : platform::state.messages) {
            EXPECT_THAT(m.file, MatchesRegex("[a-z_]+\\.cpp"));
            EXPECT_GT(m.line, 0);
            char where[100];
            std::snprintf(where, sizeof where, "%x %u %s: ", m.module, m.level, m.function.c_str());
            lines.push_back(where + m.text);
        }
        return lines;
    }
};

TEST_F(Session, AnyFirstCallOpensTheFixedPathOnce) {
    for (EntryPoint const& first : kEntryPoints) {
        SCOPED_TRACE(first.name);
        int const before = opens();
        first.call();
        ASSERT_NE(db, nullptr);
        EXPECT_EQ(sqlite3_db_filename(db, "main"), file());
        for (EntryPoint const& next : kEntryPoints)
            next.call();
        EXPECT_EQ(opens(), before + 1);
        closeLibrary();
    }
}

TEST_F(Session, AFailedOpenIsReportedClosedAndTriedAgain) {
    platform::state.channelDatabase = platform::kUnopenablePath;
    int expectedOpens = 0;
    for (EntryPoint const& entry : kEntryPoints) {
        if (entry.call == serviceCount)
            break;
        SCOPED_TRACE(entry.name);
        for (int attempt = 1; attempt <= 2; ++attempt) {
            platform::state.messages.clear();
            auto const memory = sqlite3_memory_used();
            EXPECT_EQ(entry.call(), entry.answerWhenClosed);
            EXPECT_EQ(sqlite3_memory_used(), memory);  // the handle is closed
            EXPECT_EQ(db, nullptr);
            EXPECT_EQ(opens(), ++expectedOpens);
            EXPECT_THAT(texts(1), Contains("will open db "));
            EXPECT_THAT(texts(), ElementsAre("open or create db failed,res:14"));
            for (platform::Message const& m : platform::state.messages) {
                EXPECT_EQ(m.function, entry.name);
                EXPECT_EQ(m.module, entry.module);
            }
        }
    }
    platform::state.channelDatabase = file();
    EXPECT_EQ(attributes(), "0 0");
}

TEST_F(Session, TheServiceQueryKeepsAFailedHandleForGood) {
    platform::state.channelDatabase = platform::kUnopenablePath;
    EXPECT_EQ(serviceCount(), "0");
    EXPECT_NE(db, nullptr);
    EXPECT_THAT(texts(), ElementsAre("open or creat servicelist.db failed,res:14 "));
    platform::state.channelDatabase = file();
    platform::state.messages.clear();
    EXPECT_EQ(serviceCount(), "0");
    EXPECT_EQ(folderCount(), "0");
    EXPECT_EQ(attributes(), "21 77");
    EXPECT_EQ(opens(), 1);
    EXPECT_THAT(texts(), IsSupersetOf({"SQL ERROR res:21.", "SQL error res:21"}));
}

TEST_F(Session, AConnectionOfTheHostIsUsedAndNothingOpened) {
    db = database().connection();
    EXPECT_EQ(serviceCount() + folderCount(), "11");
    EXPECT_EQ(opens(), 0);
    db = nullptr;  // the builder closes it
}

TEST_F(Session, OnlyTheServiceQuerySetsTheTimeoutAndTheViews) {
    dbaccess::select_Folders();
    channel_database::ChannelDatabase library(db);
    char const* const views = "SELECT count(*) FROM sqlite_temp_master WHERE type = 'view'";
    auto const state = [&] {
        return library.value("PRAGMA busy_timeout") + " " + library.value(views);
    };
    EXPECT_EQ(state(), "0 0");
    for (int query = 0; query < 2; ++query) {
        EXPECT_EQ(serviceCount(), "1");
        EXPECT_EQ(state(), "1000 2");
    }
}

TEST_F(Session, BusyHandlerSleepsReportsAndNeverGivesUp) {
    for (int const count : {0, 1000000})
        EXPECT_EQ(dbaccess::busy_callback(nullptr, count), 1);
    EXPECT_EQ(platform::state.sleptMicroseconds, 200000U);
    EXPECT_THAT(texts(), ElementsAre("data base is locked 0 ", "data base is locked 1000000 "));
}

TEST_F(Session, TracesOfTheRequests) {
    dbaccess::select_Folders();
    EXPECT_THAT(
        trace(),
        ElementsAre("da 1 select_Folders: called ", "da 1 select_Folders: will open db ",
                    "1 1 folder_callback: Called", "da 5000 folder_callback: flrow->size():7",
                    "da 1 select_Folders: folder.size:1"));
    closeLibrary();
    EXPECT_EQ(serviceCount(), "1");
    EXPECT_THAT(
        trace(),
        ElementsAre("da 1 get_dbservices: called,favoriteUuId:list-1 ",
                    "da 4000 get_dbservices: will open db ",
                    "da 1 getFavriteAttributes: called,favoriteUuId:list-1 ",
                    "da 4000 select_dbservice: attributes: 0.",
                    "da 5000 service_callback: svrow->size():34",
                    "d2 3000 fetchServiceItem: uuid:service-1, channelNumber:1,internalName:Eins,"
                    "attr:268436032,encrypted:0,isdelete:0",
                    "da 1 get_dbservices: end,size:1 "));
}

TEST_F(Session, ADisabledMessageCostsOneCheck) {
    platform::state.isEnabled = [](unsigned int) { return false; };
    EXPECT_EQ(serviceCount(), "1");
    EXPECT_EQ(platform::state.checkCount, 7);
    EXPECT_THAT(platform::state.messages, IsEmpty());
}

}  // namespace
