// The positions of OTT channels, in a database of their own below HOME.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "edits/edit_test.h"

namespace {

using testing::ElementsAre;

using OttLists = EditTest;
using Numbers = std::vector<unsigned int>;

TEST_F(OttLists, AreReadByNameAndAppended) {
    ott("('FAV1', 5), ('FAV3', 7), ('FAV1', 3), ('FAV2', 0), ('FAV11', 9), ('FAV1', 3)");
    std::pair<int (*)(Numbers&), Numbers> const cases[] = {
        {dbaccess::getOttFav1List, {42, 5, 3, 3}},
        {dbaccess::getOttFav2List, {42, 0}},
        {dbaccess::getOttFav3List, {42, 7}},
        {dbaccess::getOttFav4List, {42}}};
    for (auto const& [read, expected] : cases) {
        Numbers values = {42};
        EXPECT_EQ(read(values), 0);
        EXPECT_EQ(values, expected);
    }
    setenv("HOME", "/dev/null", 1);
    Numbers values;
    EXPECT_EQ(dbaccess::getOttFav3List(values), 0) << "the connection stays";
    EXPECT_THAT(texts(4000),
                ElementsAre("Websql db path:" + directory() + "/", "dbPath:" + ottFile()));
}

TEST_F(OttLists, ReadThePositionsLeadingNumber) {
    std::pair<std::string, Numbers> const cases[] = {
        {"NULL", {}},
        {"' \t\n12ab'", {12}},
        {"'x9'", {0}},
        {"'+-5'", {0}},
        {"-1", {4294967295U}},
        {"2147483648", {2147483647U}},
        {"'99999999999999999999'", {2147483647U}},
        {"-2147483649", {2147483648U}},
    };
    for (auto const& [value, expected] : cases) {
        Numbers values;
        EXPECT_EQ(dbaccess::searchOTTdb(("SELECT " + value).c_str(), values), 0);
        EXPECT_EQ(values, expected) << value;
    }
    Numbers values;
    EXPECT_EQ(
        dbaccess::searchOTTdb("SELECT 5 UNION ALL SELECT abs(-9223372036854775807 - 1)", values),
        -1);
    EXPECT_THAT(values, ElementsAre(5)) << "rows before a failure stay";
    EXPECT_THAT(texts(), ElementsAre("search db failed. integer overflow "));
}

TEST_F(OttLists, AreEmptyWithoutAUsableFile) {
    std::unique_ptr<DatabaseLock> lock;
    std::pair<std::function<void()>, std::string> const cases[] = {
        {[] {}, "search db failed. no such table: SQL_OTTFavChannels "},
        {[&] { std::ofstream file(ottFile()); },
         "search db failed. no such table: SQL_OTTFavChannels "},
        {[&] { std::ofstream(ottFile()) << std::string(1000, 'x'); },
         "search db failed. file is not a database "},
        {[&] { setenv("HOME", "/dev/null", 1); }, "open db failed. unable to open database file "},
        {[&] {
             ott("('FAV1', 5)");
             lock = std::make_unique<DatabaseLock>(ottFile());
         },
         "search db failed. database is locked "},
        {[] { unsetenv("HOME"); }, "Cannot get Websql db path. "},
    };
    for (auto const& [make, message] : cases) {
        startAnew();
        make();
        Numbers values = {1};
        EXPECT_EQ(dbaccess::getOttFav1List(values), -1);
        EXPECT_THAT(values, ElementsAre(1));
        EXPECT_THAT(texts(), ElementsAre(message));
        EXPECT_EQ(db_zentova == nullptr, message[0] != 's');
        EXPECT_EQ(platform::state.sleepCount, 0);
        lock.reset();
    }
    ott("('FAV1', 5)");
    setenv("HOME", std::filesystem::relative(directory()).c_str(), 1);
    Numbers values;
    EXPECT_EQ(dbaccess::getOttFav1List(values), 0) << "without a connection it tries anew";
    EXPECT_THAT(values, ElementsAre(5)) << "a relative HOME counts from the working directory";
}

}  // namespace
