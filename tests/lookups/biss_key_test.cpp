// The BISS key of a service.
#include "support/test_database.h"

namespace {

using namespace testing;

using BissKey = TestDatabase;

TEST_F(BissKey, IsTheTextStoredOrNull) {
    std::tuple<char const*, channel_database::Value, char const*> const cases[] = {
        {"plain", "12345600789ABC00", "12345600789ABC00"},
        {"empty", "", ""},
        {"none", nullptr, "NULL"},
        {"number", 7, "7"},
        {"o'clock", "quoted", "quoted"},
        {"twice", "first", "last"},
        {"twice", "last", "last"}};
    for (auto const& [uuid, key, expected] : cases)
        database().dvbs(uuid).uuid(uuid).bissKey(key);
    for (auto const& [uuid, key, expected] : cases) {
        EXPECT_EQ(dbaccess::getBissKeyFromService(uuid), expected) << uuid;
        EXPECT_EQ(bisskey, expected) << uuid;
    }
    EXPECT_THAT(texts(), ElementsAre("get bisskey result failed"));
    EXPECT_EQ(dbaccess::getBissKeyFromService("unknown"), "NULL");
    EXPECT_EQ(dbaccess::getBissKeyFromService("' OR 1=1 OR uuid='"), "NULL");
    EXPECT_THAT(texts(), ElementsAre("get bisskey result failed"));
    EXPECT_THAT(platform::state.messages, Each(Field(&platform::Message::module, 0xb4U)));
}

TEST_F(BissKey, LockedDatabaseIsTriedTenTimesAndOtherFailuresOnce) {
    database().dvbs("it").uuid("it").bissKey("key");
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "key");
    platform::state.messages.clear();
    DatabaseLock lock(file());
    platform::state.onSleep = [&](int count) { count == 12 ? lock.release() : void(); };
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "NULL");
    EXPECT_EQ(platform::state.sleptMicroseconds, 1000000U);
    EXPECT_EQ(texts(), repeated(10, {"SQL error:5", kTryAgain}));
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "key");
    EXPECT_EQ(platform::state.sleepCount, 12);

    database().run("ALTER TABLE Service RENAME COLUMN bissKey TO other");
    platform::state.messages.clear();
    EXPECT_EQ(dbaccess::getBissKeyFromService("it"), "NULL");
    EXPECT_THAT(texts(), ElementsAre("SQL error:1"));
    EXPECT_EQ(platform::state.sleepCount, 12);
}

TEST_F(BissKey, CallbackStoresTextsAndStopsWithoutValues) {
    bisskey = "old";
    char text[] = "new";
    char* values[] = {nullptr, text};
    EXPECT_EQ(getbissKey_callback(nullptr, 1, nullptr, nullptr), -1);
    EXPECT_EQ(getbissKey_callback(nullptr, 1, values, nullptr), 0);
    EXPECT_EQ(bisskey, "old");
    EXPECT_THAT(texts(), ElementsAre("SQL error", "get bisskey result failed"));
    EXPECT_EQ(getbissKey_callback(nullptr, 1, values + 1, nullptr), 0);
    EXPECT_EQ(bisskey, "new");
}

}  // namespace
