// The service query: order, frame, busy databases, hostile uuids and bad rows.
#include <cerrno>

#include "support/test_database.h"

namespace {

using namespace testing;

class ServiceList : public TestDatabase {
  protected:
    void SetUp() override {
        TestDatabase::SetUp();
        list_ = std::make_unique<channel_database::List>(database().list("User.tvFAV1").uuid("u"));
        put(1, "One");
        put(2, "Two");
        put(3, "Three");
    }
    channel_database::Service put(int number, std::string const& name) {
        auto service = database().dvbt(name);
        database().put(*list_, service, number);
        return service;
    }
    static std::string names(std::string const& uuid) {
        return column(dbaccess::get_dbservices(uuid), 1);
    }
    // Without the busy timeout that get_dbservices sets.
    static int select(ResultSet& result) { return dbaccess::select_dbservice(db, "u", &result); }

    std::unique_ptr<channel_database::List> list_;
};

// clang-format off

TEST_F(ServiceList, OrderFollowsTheListsAttributes) {
    put(-1, "First").radio();
    database().put(*list_, database().input("hdmi1"), 10);
    database().put(database().list("User.tvFAV2"), database().dvbt("elsewhere"), 1);
    char const* const byNumber = "First;One;Two;Three;HDMI 1";
    char const* const byMediaType = "One;Two;Three;HDMI 1;First";
    std::pair<channel_database::Value, char const*> const cases[] = {
        {0, byNumber}, {0x200, byMediaType}, {-1, byMediaType}, {0xfdff, byNumber},
        {nullptr, byNumber}, {"x", byNumber}};
    for (auto const& [attributes, expected] : cases) {
        list_->attributes(attributes);
        EXPECT_EQ(names("u"), expected);
    }
    EXPECT_EQ(texts(4000)[2], "Some Operators Order by MediaType then ChnanelNum.");
    EXPECT_EQ(m_selectedServiceListId, 1U);
    EXPECT_EQ(names("unknown"), "");
}

TEST_F(ServiceList, DeletedItemsTravelInTheRows) {
    database().run("UPDATE FavoriteItem SET isDeleted = 1 WHERE ChannelNum = 2");
    m_svfield = {0, 3};
    EXPECT_EQ(joined(dbaccess::get_dbservices("u")), "One|268567104;Two|268566592;Three|268567104");
}

TEST_F(ServiceList, OfTwoListsWithOneUuidTheFirstIsReadAndTheLastIsAsked) {
    put(4, "Radio").radio();
    put(5, "Five");
    database().put(database().list("User.tvFAV2").uuid("u").attributes(0x200),
                   database().dvbt("Other"), 1);
    EXPECT_EQ(names("u"), "One;Two;Three;Five;Radio");
}

TEST_F(ServiceList, AttributesAreTheStoredWord) {
    std::tuple<channel_database::Value, int, unsigned int> const cases[] = {
        {512, 0, 512}, {-1, 0, 4294967295U}, {4294967295, 0, 4294967295U}, {-4294967295, 0, 1},
        {"+7", 0, 7}, {nullptr, SQLITE_ABORT, 77}, {"", SQLITE_ABORT, 77},
        {"1 x", SQLITE_ABORT, 77}, {4294967296, SQLITE_ABORT, 77}};
    for (auto const& [stored, result, expected] : cases) {
        list_->attributes(stored);
        unsigned int word = 77;
        EXPECT_EQ(dbaccess::getFavriteAttributes("u", &word), result);
        EXPECT_EQ(word, expected);
    }
    unsigned int word = 77;
    EXPECT_EQ(dbaccess::getFavriteAttributes("unknown", &word), 0);
    EXPECT_EQ(word, 77U);
}

TEST_F(ServiceList, AUuidIsNeverMoreThanAValue) {
    std::string const uuids[] = {
        "it's", "'", "''", "'; DELETE FROM FavoriteItem; --", "') OR 1=1; --", "\"", "\\'", "",
        std::string(1000000, 'x'), std::string("nul\0'; DROP TABLE Lcn; --", 24),
        std::string(1000, '\0'), std::string("\1\0\1\1\2\0\1", 7), std::string("\2\0\1\2'", 5),
        std::string("\0", 1)};
    unsigned int pid = 100;
    for (std::string const& uuid : uuids) {
        auto list = database().list("User.tv", ++pid).uuid(uuid).attributes(pid);
        database().put(list, database().dvbt("of " + std::to_string(pid), pid), 1);
    }
    pid = 100;
    for (std::string const& uuid : uuids) {
        unsigned int attributes = 0;
        EXPECT_EQ(names(uuid), "of " + std::to_string(++pid));
        EXPECT_EQ(dbaccess::getFavriteAttributes(uuid, &attributes), 0);
        EXPECT_EQ(attributes, pid);
    }
    EXPECT_THAT(texts(), IsEmpty());
}

// A foul column costs its value, not the row, nor those behind it.
TEST_F(ServiceList, AColumnThatDoesNotConvertCountsAsZero) {
    std::tuple<char const*, channel_database::Value, char const*> const cases[] = {
        {"Type", 2147483648, "'2147483648'"}, {"Hdtv", nullptr, "''"}, {"FavTag4", "x", "'x'"}};
    database().run("UPDATE Service SET Type = 0, Hdtv = 0, FavTag4 = 0 WHERE Pid = 2");
    std::string const sound = joined(dbaccess::get_dbservices("u"));
    std::vector<std::string> reasons;
    for (auto const& [column, value, text] : cases) {
        database().run(std::string("UPDATE Service SET ") + column + " = ? WHERE Pid = 2", {value});
        reasons.push_back(std::string("service 2 (uuid service-2): column ") + column +
                          " holds no number: " + text);
        platform::state.messages.clear();
        EXPECT_EQ(joined(dbaccess::get_dbservices("u")), sound) << column;
        EXPECT_THAT(texts(), testing::ElementsAreArray(reasons)) << column;
    }
}

TEST_F(ServiceList, WithoutRowsTheResultIsNotTouched) {
    dbaccess::get_dbservices("u");
    EXPECT_EQ(dbaccess::select_dbservice(db, "no such list", nullptr), 0);
    EXPECT_THAT(texts(), IsEmpty());
}

// clang-format on

TEST_F(ServiceList, ABusyDatabaseIsTriedFiftyTimesAndItsOrderIsNotLost) {
    put(-1, "Radio").radio();
    list_->attributes(0x200);
    dbaccess::get_dbservices("u");
    sqlite3_busy_timeout(db, 0);
    platform::state.messages.clear();
    ResultSet result;
    DatabaseLock lock(file());
    EXPECT_EQ(select(result), SQLITE_OK);  // the COMMIT's
    EXPECT_THAT(result, IsEmpty());
    EXPECT_EQ(platform::state.sleptMicroseconds, 5000000U);
    auto expected = repeated(51, {"SQL error:5", kTryAgain});
    expected[0] =
        "sqlite3_exec error:5, sql:'SELECT Attributes FROM FavoriteList WHERE Uuid = 'u';'.";
    expected[1] = "database is locked";
    EXPECT_EQ(texts(), expected);
    platform::state.onSleep = [&](int count) {
        EXPECT_EQ(pthread_mutex_trylock(&svresult_mutex), EBUSY);
        count == 53 ? lock.release() : void();
    };
    EXPECT_EQ(names("u"), "One;Two;Three;Radio");
    EXPECT_EQ(platform::state.sleepCount, 53);
}

// Breaks off with a busy database at its second call, then works.
void busyOnce(sqlite3_context* context, int, sqlite3_value** values) {
    int& calls = *static_cast<int*>(sqlite3_user_data(context));
    ++calls == 2 ? sqlite3_result_error_code(context, SQLITE_BUSY)
                 : sqlite3_result_value(context, values[0]);
}

TEST_F(ServiceList, ATryAfterDeliveredRowsStartsOver) {
    dbaccess::select_Folders();  // opens
    int calls = 0;
    sqlite3_create_function(db, "busyOnce", 1, SQLITE_UTF8, &calls, busyOnce, nullptr, nullptr);
    char const* const view =
        "CREATE TEMP VIEW FavoriteItemView AS SELECT *, 0 AS Uri, 0 AS InternalName,"
        " Name AS ExternalName, -1 AS FIVisible, -1 AS FISelectable, 0 AS NetworkId,"
        " 0 AS SVisible, 0 AS SSelectable, 0 AS TtxPreviewPage, 0 AS TtxCharEnc,"
        " 0 AS TtxSubtitlePage, 0 AS TunerUuid, 0 AS NITId, busyOnce(0) AS Lcn"
        " FROM main.FavoriteItem JOIN main.Service ON Service.Pid = ServiceId";
    ASSERT_EQ(sqlexec(db, view, nullptr, nullptr, nullptr), SQLITE_OK);
    m_svfield = {1, 0};
    ResultSet result(1, boost::shared_ptr<ResultRow>(new ResultRow(1, "the host's")));
    EXPECT_EQ(select(result), SQLITE_OK);
    EXPECT_EQ(joined(result), "the host's;1|One;2|Two;3|Three");
    EXPECT_THAT(texts(5000), SizeIs(4 + 1));  // the folder, a row of the first try and three
    EXPECT_THAT(texts(), ElementsAre("SQL error:5", kTryAgain));
}

TEST_F(ServiceList, TheQueryRunsInATransactionOfTheHost) {
    dbaccess::get_dbservices("u");
    ASSERT_EQ(sqlexec(db, "BEGIN", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(names("u"), "One;Two;Three");
    EXPECT_THAT(texts(), ElementsAre("SQL error:1"));
    EXPECT_NE(sqlite3_get_autocommit(db), 0);  // the COMMIT ended it
}

// SQLite's storage, whose folder for temporary files is full or cannot be written.
class NoTemporaryFiles {
  public:
    NoTemporaryFiles() {
        real_ = sqlite3_vfs_find(nullptr);
        vfs_ = *real_;
        vfs_.zName = "no temporary files";
        vfs_.xOpen = [](sqlite3_vfs*, char const* name, sqlite3_file* file, int flags, int* out) {
            file->pMethods = nullptr;
            return name == nullptr ? SQLITE_CANTOPEN : real_->xOpen(real_, name, file, flags, out);
        };
        sqlite3_vfs_register(&vfs_, 1);
    }
    ~NoTemporaryFiles() {
        sqlite3_vfs_register(real_, 1);
        sqlite3_vfs_unregister(&vfs_);
    }

  private:
    static inline sqlite3_vfs* real_;
    sqlite3_vfs vfs_;
};

TEST_F(ServiceList, ALongListIsSortedInMemory) {
    constexpr int kServices = 20000;
    database().run("DELETE FROM FavoriteItem");
    database().run(
        "INSERT INTO FavoriteItem (ServiceId, FavoriteId, ChannelNum) WITH RECURSIVE n (i) AS"
        " (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT ?) SELECT i % 3 + 1, Pid, -i"
        " FROM n, FavoriteList",
        {kServices});
    list_->attributes(0x200);
    platform::state.isEnabled = [](unsigned int level) { return level == 1000; };
    NoTemporaryFiles const none;
    auto const before = sqlite3_memory_used();
    sqlite3_memory_highwater(1);
    ResultSet const rows = dbaccess::get_dbservices("u");
    ASSERT_THAT(rows, SizeIs(kServices));
    EXPECT_EQ(rows[0]->at(0), std::to_string(-kServices));
    std::printf("SQLite's memory for %d services: %lld KiB\n", kServices,
                static_cast<long long>(sqlite3_memory_highwater(0) - before) / 1024);

    // A host that does not ask for it on a connection of its own gets nothing, and is told.
    sqlite3_exec(db, "PRAGMA temp_store = FILE", nullptr, nullptr, nullptr);
    EXPECT_THAT(dbaccess::get_dbservices("u"), IsEmpty());
    EXPECT_THAT(texts(), ElementsAre("SQL error:14"));
    closeLibrary();
}

}  // namespace
