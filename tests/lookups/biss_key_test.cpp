// The BISS key of a service.
#include <gmock/gmock.h>

#include "support/test_database.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Field;

class BissKey : public TestDatabase {
  protected:
    static int getKey(const char* key) {
        std::string text = key != nullptr ? key : "";
        char* values[] = {key != nullptr ? text.data() : nullptr};
        return getbissKey_callback(nullptr, 1, values, nullptr);
    }
};

TEST_F(BissKey, IsTheTextStoredOrNull) {
    const struct {
        const char* uuid;
        channel_database::Value key;
        const char* expected;
    } rows[] = {{"plain", "12345600789ABC00", "12345600789ABC00"},
                {"empty", "", ""},
                {"none", nullptr, "NULL"},
                {"number", 7, "7"},
                {"o'clock", "quoted", "quoted"},
                {"twice", "first", "last"},
                {"twice", "last", "last"}};
    for (const auto& row : rows)
        database().dvbs(row.uuid).uuid(row.uuid).bissKey(row.key);
    for (const auto& row : rows) {
        EXPECT_EQ(dbaccess::getBissKeyFromService(row.uuid), row.expected) << row.uuid;
        EXPECT_EQ(bisskey, row.expected) << row.uuid;
    }
    EXPECT_THAT(texts(), ElementsAre("get bisskey result failed"));
    EXPECT_EQ(dbaccess::getBissKeyFromService("unknown"), "NULL");
    EXPECT_EQ(dbaccess::getBissKeyFromService("' OR 1=1 OR uuid='"), "NULL");
    EXPECT_THAT(texts(), ElementsAre("get bisskey result failed"));
    EXPECT_EQ(opens(), 1);
    EXPECT_THAT(platform::messages(), Each(Field(&platform::Message::module, 0xb4U)));
}

TEST_F(BissKey, LockedDatabaseIsTriedTenTimes) {
    database().dvbs("it").uuid("it").bissKey("key");
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "key");
    platform::forgetMessages();
    DatabaseLock lock(file());
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "NULL");
    EXPECT_EQ(platform::sleptMicroseconds(), 1000000U);
    std::vector<std::string> pairs;
    for (int i = 0; i < 10; ++i)
        pairs.insert(pairs.end(), {"SQL error:5", " database is locked, try again"});
    EXPECT_EQ(texts(), pairs);
    platform::onSleep([&](int count) {
        if (count == 12)
            lock.release();
    });
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "key");
    EXPECT_EQ(platform::sleepCount(), 12);
}

TEST_F(BissKey, OtherFailuresAreNotTriedAgain) {
    database().run("ALTER TABLE Service RENAME COLUMN bissKey TO other");
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "NULL");
    EXPECT_THAT(texts(), ElementsAre("SQL error:1"));
    EXPECT_EQ(platform::sleepCount(), 0);

    EXPECT_EQ(sqlite3_close(db), SQLITE_OK);
    db = nullptr;
    platform::forgetMessages();
    platform::redirectOpen(platform::kChannelDatabasePath, platform::kUnopenablePath);
    bisskey = "old";
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "NULL");
    EXPECT_EQ(db, nullptr);
    EXPECT_THAT(texts(4000), ElementsAre("called "));
    EXPECT_THAT(texts(1), ElementsAre("will open db "));
    EXPECT_THAT(texts(), ElementsAre("open or create db failed,res:14"));
    EXPECT_THAT(platform::messages(),
                Each(AllOf(Field(&platform::Message::module, 0xb4U),
                           Field(&platform::Message::function, "getBissKeyFromService"))));
}

TEST_F(BissKey, CallbackStoresTextsAndStopsWithoutValues) {
    bisskey = "old";
    EXPECT_EQ(getbissKey_callback(nullptr, 1, nullptr, nullptr), -1);
    EXPECT_EQ(getKey(nullptr), 0);
    EXPECT_EQ(bisskey, "old");
    EXPECT_THAT(texts(), ElementsAre("SQL error", "get bisskey result failed"));
    EXPECT_EQ(getKey("new"), 0);
    EXPECT_EQ(bisskey, "new");
}

}  // namespace
