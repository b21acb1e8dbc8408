// The doubles reach the library under test, not only this program.
#include <gmock/gmock.h>

#include "support/test_database.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::SizeIs;

using Doubles = TestDatabase;

TEST_F(Doubles, StandInForThePlatformInsideTheLibrary) {
    EXPECT_EQ(dbaccess::busy_callback(nullptr, 7), 1);
    EXPECT_EQ(platform::sleepCount(), 1);
    EXPECT_EQ(platform::sleptMicroseconds(), 100000U);
    ASSERT_THAT(platform::messages(), SizeIs(1));
    const platform::Message message = platform::messages()[0];
    EXPECT_EQ(message.module, 0xdaU);
    EXPECT_EQ(message.level, 1000U);
    EXPECT_EQ(message.text, "data base is locked 7 ");
    EXPECT_EQ(message.function, "busy_callback");

    dbaccess::select_Folders();
    EXPECT_THAT(platform::openedPaths(), ElementsAre(platform::kChannelDatabasePath));
    ASSERT_NE(db, nullptr);
    EXPECT_EQ(sqlite3_db_filename(db, "main"), file());

    database().list("servicelist://tamun.all").uuid("all");
    database().list("User.tvFAV1").uuid("fav1");
    for (const char* creator : {"User.tvFAV2", "User.tvFAV3", "User.tvFAV4"}) {
        database().list(creator);
    }
    dbaccess::onServiceListEdit({"fav1"});
    EXPECT_THAT(platform::commands(), ElementsAre("sync"));
}

TEST_F(Doubles, OpenOfAnUnopenablePathFailsForReal) {
    platform::redirectOpen(platform::kChannelDatabasePath, platform::kUnopenablePath);
    EXPECT_THAT(dbaccess::select_Folders(), SizeIs(0));
    EXPECT_EQ(db, nullptr);
    EXPECT_EQ(opens(), 1);
}

TEST_F(Doubles, OnlyEnabledLevelsAreRecordedAndChecksAreCounted) {
    platform::enableLevels([](unsigned int level) { return level == 1000; });
    dbaccess::select_Folders();
    EXPECT_THAT(platform::messages(), Each(Field(&platform::Message::level, 1000U)));
    EXPECT_GT(platform::checkCount(), 0);
}

}  // namespace
