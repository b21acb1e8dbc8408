// The Astra 19.2E anchor and the scramble flag of its list.
#include <cerrno>

#include "support/test_database.h"

namespace {

using namespace testing;
using channel_database::Service;
using channel_database::Value;

constexpr char kStandardList[] = "servicelist://tamun.Astra 19.2\xc2\xb0\x45";
constexpr char kOperatorList[] = "servicelist://tamun.Astra 19.2\xc2\xb0\x45.14";
constexpr char kNoAnchor[] = "can't find Astra Anchor Service!";
constexpr char kNoRow[] = "sqlite3_step failed:101, hint:'Get a astra anchor service.'.";

class AstraServices : public TestDatabase {
  protected:
    Service anchor(std::string const& uuid, Value const& frequency = 12603750) {
        return database().dvbs(uuid).uuid(uuid).satellite(4).frontend(4).frequency(frequency);
    }
    // The anchor's uuid, or "-2" when there is none and the string is untouched.
    static std::string found() {
        std::string uuid;
        int const result = dbaccess::getAstraAnchorService(uuid);
        return uuid.empty() ? std::to_string(result) : uuid;
    }
    // The scramble flag with the result behind it when that is not 0.
    static std::string scrambled() {
        int flag = 9;
        int const result = dbaccess::checkAstraScrambleService(flag);
        return std::to_string(flag) + (result == 0 ? "" : " " + std::to_string(result));
    }
};

TEST_F(AstraServices, AnchorMeetsEveryCriterion) {
    using Change = std::function<void(channel_database::Item, Service)>;
    std::tuple<char const*, Change, char const*> const cases[] = {
        {"plain", [](auto, auto) {}, "it"},
        {"lowest frequency", [](auto, auto s) { s.frequency(12600750); }, "it"},
        {"below it", [](auto, auto s) { s.frequency(12600749); }, "-2"},
        {"highest frequency", [](auto, auto s) { s.frequency(12606750); }, "it"},
        {"above it", [](auto, auto s) { s.frequency(12606751); }, "-2"},
        {"other satellite", [](auto, auto s) { s.satellite(3); }, "-2"},
        {"other frontend", [](auto, auto s) { s.frontend(8); }, "-2"},
        {"no tuner", [](auto, auto s) { s.without("Tuner"); }, "-2"},
        {"deleted", [](auto i, auto) { i.deleted(2); }, "-2"},
        {"invisible", [](auto i, auto s) { i.visible(0), s.visible(0); }, "it"},
        {"empty uuid", [](auto, auto s) { s.uuid(""); }, "-2"},
    };
    auto const list = database().list(kStandardList);
    for (auto const& [name, change, expected] : cases) {
        auto const service = anchor("it");
        change(database().put(list, service, 1), service);
        EXPECT_EQ(found(), expected) << name;
        database().run("DELETE FROM FavoriteItem");
    }
}

TEST_F(AstraServices, CreatorFollowsThePattern) {
    char const* const cases[][2] = {{kStandardList, "it"},
                                    {kOperatorList, "it"},
                                    {"SERVICELIST://TAMUN.ASTRA 19.2 east and e", "it"},
                                    {"servicelist://tamun.Astra 19.2E.15", "-2"},
                                    {"servicelist://tamun.Astra 28.2E", "-2"},
                                    {"x servicelist://tamun.Astra 19.2E", "-2"}};
    auto const list = database().list("");
    database().put(list, anchor("it"), 1);
    for (auto const& [creator, expected] : cases) {
        database().run("UPDATE FavoriteList SET Creator = ?", {creator});
        EXPECT_EQ(found(), expected) << creator;
    }
}

TEST_F(AstraServices, FirstByChannelNumberOfTheOperatorsListWins) {
    auto const standard = database().list(kStandardList);
    database().put(standard, anchor("second"), 20);
    database().put(standard, anchor("first"), 3);
    EXPECT_EQ(found(), "first");
    EXPECT_THAT(texts(), ElementsAre(kNoRow, kNoAnchor));  // of the operator's list
    EXPECT_THAT(texts(4000), Contains("The Astra Anchor Service Uuid is [first]."));

    database().put(database().list(kOperatorList), anchor("operator"), 99);
    platform::state.messages.clear();
    EXPECT_EQ(found(), "operator");
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(texts(4000), ElementsAre(" called.", " called. isOperator = 1.",
                                         "The Astra Anchor Service Uuid is [operator]."));
}

TEST_F(AstraServices, WithoutAnAnchorTheCallersTextStaysAndCounts) {
    std::string uuid = "mine";
    EXPECT_EQ(dbaccess::getAstraAnchorService(uuid), 0);
    database().put(database().list(kStandardList), anchor("it").uuid(nullptr), 1);
    EXPECT_EQ(dbaccess::_getAstraAnchorService(uuid, false), 0);
    EXPECT_EQ(uuid, "mine");
    platform::state.messages.clear();
    EXPECT_EQ(found(), "-2");
    EXPECT_THAT(texts(), ElementsAre(kNoRow, kNoAnchor, kNoAnchor));
}

TEST_F(AstraServices, ScrambleFlagIsSetByAnyServiceOfTheList) {
    std::pair<Value, char const*> const cases[] = {
        {0, "0"},  {1, "1"},     {2, "0"},    {-1, "0"},   {nullptr, "0"},
        {"", "0"}, {"yes", "0"}, {"+1", "1"}, {"1x", "0"}, {"-4294967295", "1"}};
    auto const list = database().list(kStandardList);
    database().put(list, anchor("it"), 1);
    auto other = database().dvbt("other");  // any tuner, deleted or not
    database().put(list, other, 2).deleted();
    database().put(list, database().dvbs("last"), 3);
    for (auto const& [encrypted, expected] : cases) {
        other.encrypted(encrypted);
        EXPECT_EQ(scrambled(), expected)
            << database().value("SELECT quote(Encrypted) FROM Service WHERE Name='other'");
    }
    // A flag that is no number does not end the walk.
    other.encrypted("yes");
    database().run("UPDATE Service SET Encrypted = 1 WHERE Name = 'last'");
    EXPECT_EQ(scrambled(), "1");
    EXPECT_THAT(texts(1), Contains("Astra standard servicelist has scramble service."));
}

TEST_F(AstraServices, ScrambleFlagIsThatOfTheChosenList) {
    auto const standard = database().list(kStandardList);
    auto const ofOperator = database().list(kOperatorList);
    auto free = anchor("free");
    database().put(standard, anchor("scrambled").encrypted(), 1);
    database().put(ofOperator, database().dvbs("no anchor"), 1);
    EXPECT_EQ(scrambled(), "1");
    database().put(ofOperator, free, 2);
    EXPECT_EQ(scrambled(), "0");
    EXPECT_THAT(texts(1), Contains("Astra operator servicelist hasn't scramble service."));

    database().run("DELETE FROM DvbSTuner");
    platform::state.messages.clear();
    EXPECT_EQ(scrambled(), "0 -2");
    EXPECT_THAT(texts(), ElementsAre(kNoRow, kNoAnchor, kNoRow, kNoAnchor,
                                     "Astra Scramble Service is missing. Set isExistent 0!"));
}

TEST_F(AstraServices, FailuresLeaveTheOutputsAlone) {
    database().put(database().list(kOperatorList), anchor("it").encrypted(), 1);
    database().run("ALTER TABLE Service RENAME COLUMN Encrypted TO Other");
    EXPECT_EQ(scrambled(), "0");
    EXPECT_THAT(texts(), Contains(HasSubstr("no such column: Encrypted")));
    database().run("DROP TABLE DvbSTuner");
    closeLibrary();
    EXPECT_EQ(found(), "-2");
    EXPECT_THAT(texts(), ElementsAre(StartsWith("sqlite3_prepare_v2 failed:1"),
                                     StartsWith("sqlite3_prepare_v2 failed:1")));
}

TEST_F(AstraServices, LockedDatabaseIsWaitedForInEachList) {
    database().put(database().list(kOperatorList), anchor("it"), 1);
    EXPECT_EQ(found(), "it");
    DatabaseLock lock(file());
    platform::state.onSleep = [&](int count) {
        EXPECT_EQ(pthread_mutex_trylock(&svresult_mutex), EBUSY);
        count == 103 ? lock.release() : void();
    };
    EXPECT_EQ(found(), "-2");
    EXPECT_EQ(platform::state.sleepCount, 100);
    EXPECT_EQ(scrambled(), "0");
    EXPECT_EQ(platform::state.sleepCount, 103);
}

// Runs `action` once, at the library's next statement that holds this text.
void at(char const* text, std::function<void()> action) {
    static std::pair<std::string, std::function<void()>> awaited;
    awaited = {text, std::move(action)};
    auto const onStatement = [](unsigned, void*, void* statement, void*) {
        std::string const sql = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
        if (awaited.second && sql.find(awaited.first) != std::string::npos)
            std::exchange(awaited.second, nullptr)();
        return 0;
    };
    sqlite3_trace_v2(db, SQLITE_TRACE_STMT, onStatement, nullptr);
}

// The owner writes between two queries: first the standard list alone has an anchor, then the
// operator's alone, and the standard list a scrambled service. Or a lock keeps one from its answer.
TEST_F(AstraServices, AnswerIsThatOfOneStateAndALockIsNoAnswer) {
    constexpr char kOfStandard[] = "E' AND sv.Pid = ds";
    constexpr char kFlags[] = "SELECT Encrypted";
    constexpr char kFreshConnection[] = "";
    constexpr int kWrites = -1;
    constexpr int kLocksForGood = 0;
    struct Case {
        std::string (*call)();
        char const* at;
        int owner;  // what happens there; a lock is released at the sleep of this number
        char const* expected;
    };
    Case const cases[] = {
        {found, kOfStandard, kWrites, "operator"},
        {scrambled, kOfStandard, kWrites, "0"},
        {scrambled, kFlags, kWrites, "0"},
        {found, kFreshConnection, 3, "operator"},
        {found, kFreshConnection, 60, "operator"},
        {scrambled, kFreshConnection, 60, "1"},
        {scrambled, kFlags, 49, "1"},
        {found, kFreshConnection, kLocksForGood, "-2"},
        {scrambled, kFlags, kLocksForGood, "9 -2"},
        {scrambled, kFreshConnection, 0, "9 -2"},
    };
    database().put(database().list(kOperatorList), anchor("operator"), 1);
    database().put(database().list(kStandardList), anchor("standard"), 2);
    for (auto const& test : cases) {
        SCOPED_TRACE(&test - cases);
        bool const writes = test.owner == kWrites;
        database().run("UPDATE Service SET Encrypted = ?", {writes ? 0 : 1});
        database().run("UPDATE FavoriteItem SET isDeleted = ? AND ChannelNum = 1", {writes});
        dbaccess::select_Folders();  // opens
        std::unique_ptr<DatabaseLock> lock;
        auto const act = [&] {
            if (!writes) {
                lock = std::make_unique<DatabaseLock>(file());
                return;
            }
            database().run("BEGIN");
            database().run("UPDATE FavoriteItem SET isDeleted = 1 - isDeleted");
            database().run("UPDATE Service SET Encrypted = 1 WHERE Uuid = 'standard'");
            database().run("COMMIT");
        };
        if (test.at == kFreshConnection) {
            closeLibrary();
            act();
        } else {
            at(test.at, act);
        }
        platform::state.sleepCount = 0;
        platform::state.onSleep = [&](int count) { count == test.owner ? lock.reset() : void(); };
        EXPECT_EQ(test.call(), test.expected);
        EXPECT_NE(sqlite3_get_autocommit(db), 0);
    }
}

}  // namespace
