// Edits of the four FAV lists: the difference between the entries and the stored items.
#include "edits/edit_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using FavListEdit = EditTest;

TEST_F(FavListEdit, WritesTheDifferenceInOneTransaction) {
    EXPECT_EQ(edit("fav2  0 1 10  0 2 13  1 3 12"), 101);
    EXPECT_EQ(changes(),
              "-Item 711; Item 712: isDeleted 0>1; List 7: UpdateTag 0>1;"
              " Service 11: FavTag2 1>0; Service 13: FavTag2 0>1;"
              " +Item 813|13|7|7|2|0|-1|-1");
    EXPECT_EQ(statements(), R"(SELECT Pid FROM FavoriteList WHERE Uuid = 'fav2';
UPDATE FavoriteList SET UpdateTag = case UpdateTag WHEN 65535 then 0 else UpdateTag+1 end Where Pid= 7;
SELECT Pid FROM FavoriteList WHERE Creator like 'User.tvFAV%' ;
SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = 7;
BEGIN TRANSACTION
UPDATE FavoriteItem SET ChannelNum = 1, isDeleted =0 WHERE FavoriteId= 7 AND serviceId= 10;
UPDATE FavoriteItem SET ChannelNum = 3, isDeleted =1 WHERE FavoriteId= 7 AND serviceId= 12;
INSERT INTO FavoriteItem (ServiceId, ChannelNum, FavoriteId, OriginalFavoriteId) VALUES (13, 2, 7, 7);
DELETE FROM FavoriteItem WHERE FavoriteId= 7 AND serviceId= 11;
UPDATE Service SET FavTag2= 1 WHERE Pid= 13;
UPDATE Service SET FavTag2= 0 WHERE Pid= 11;
COMMIT TRANSACTION
)");
    EXPECT_THAT(texts(4000),
                ElementsAre(" called,  arguments.size:10.", "The edited list's Id is [7].",
                            "called ", "The edited list is FAV[2] list.",
                            "Update (count: 2) existed Services to FAV list.",
                            "Add (count: 1) new Services to FAV list.",
                            "Remove (count: 1) unreceivable Services from FAV list.",
                            "COMMIT TRANSACTION."));

    EXPECT_EQ(edit("fav4"), 0);
    auto traced = texts(4000);
    traced.erase(traced.begin(), traced.begin() + 4);
    EXPECT_THAT(traced,
                ElementsAre("The ori FAV list is empty! No FAV service need to be removed.",
                            "The ori FAV list is empty! All written FAV services are new services.",
                            "No services to be updated!", "No services to be added!",
                            "No services to be removed!", "COMMIT TRANSACTION."));
}

TEST_F(FavListEdit, MatchesListAndServicesByKeyAlone) {
    std::string const hide = "UPDATE FavoriteItem SET isDeleted = 1 WHERE Id = 812";
    std::string const repeat = "UPDATE FavoriteItem SET ServiceId = 10 WHERE Id = 711";
    struct Case {
        std::string before;  // a change of the world
        std::string arguments;
        int result;
        std::string changes;
    };
    Case const cases[] = {
        // Stored services: no tag follows the deleted flag, and bit 0 alone counts.
        {"", "fav2  0 3 10  1 2 11  0 1 12", 0,
         "Item 710: ChannelNum 1>3; Item 711: isDeleted 0>1; Item 712: ChannelNum 3>1; "
         "List 7: UpdateTag 0>1"},
        {"", "fav2  4294967294 1 10  4294967295 2 11  62 3 12", 0,
         "Item 711: isDeleted 0>1; List 7: UpdateTag 0>1"},
        // No entries.
        {"", "fav2", 101,
         "-Item 710; -Item 711; -Item 712; List 7: UpdateTag 0>1; Service 10: FavTag2 1>0; "
         "Service 11: FavTag2 1>0; Service 12: FavTag2 1>0"},
        // New services come undeleted whatever their flag; one is unknown to the database.
        {"", "fav4  1 7 10  0 3 99", 101,
         "List 9: UpdateTag 0>1; Service 10: FavTag4 0>1; +Item 813|10|9|9|7|0|-1|-1; "
         "+Item 814|99|9|9|3|0|-1|-1"},
        // A deleted item counts as stored: named, and left out.
        {hide, "fav3  0 4 12", 0, "Item 812: isDeleted 1>0; List 8: UpdateTag 0>1"},
        {hide, "fav3", 101, "-Item 812; List 8: UpdateTag 0>1; Service 12: FavTag3 1>0"},
        // Repeats: the last entry of a stored service stands, a new one comes twice.
        {"", "fav3  0 5 12  1 6 12", 0,
         "Item 812: ChannelNum 4>6; Item 812: isDeleted 0>1; List 8: UpdateTag 0>1"},
        {"", "fav4  0 5 12  0 6 12", 101,
         "List 9: UpdateTag 0>1; Service 12: FavTag4 0>1; +Item 813|12|9|9|5|0|-1|-1; "
         "+Item 814|12|9|9|6|0|-1|-1"},
        {repeat, "fav2  0 8 10  0 3 12", 0,
         "Item 710: ChannelNum 1>8; Item 711: ChannelNum 2>8; List 7: UpdateTag 0>1"},
        // Of two lists with one UUID the last.
        {"UPDATE FavoriteList SET Uuid = 'twin' WHERE Pid IN (6, 8)", "twin", 101,
         "-Item 812; List 8: UpdateTag 0>1; Service 12: FavTag3 1>0"},
    };
    for (auto const& test : cases) {
        SCOPED_TRACE(test.arguments);
        startAnew();
        if (!test.before.empty())
            change(test.before);
        EXPECT_EQ(edit(test.arguments), test.result);
        EXPECT_EQ(changes(), test.changes);
    }
    startAnew();
    change(repeat);
    EXPECT_EQ(edit("fav2  0 3 12"), 101);
    std::string const removal = "DELETE FROM FavoriteItem WHERE FavoriteId= 7 AND serviceId= 10;\n";
    EXPECT_THAT(statements(), HasSubstr(removal + removal)) << "once for each of its items";
}

// The position among the lists whose creator begins with "User.tvFAV" decides, not the digit.
TEST_F(FavListEdit, CountsTheListsInTheOrderOfTheirQuery) {
    change("DROP INDEX ListByCreator");
    change("UPDATE FavoriteList SET Creator = 'User.tvFAV' || (10 - Pid) WHERE Pid >= 6");
    EXPECT_EQ(edit("fav3  0 4 12  0 3 15"), 101);
    EXPECT_EQ(changes(),
              "List 8: UpdateTag 0>1; Service 15: FavTag3 0>1; +Item 813|15|8|8|3|0|-1|-1");
}

// What is written is the difference from the items as they are behind the lock.
TEST_F(FavListEdit, PlansAgainWhenAnotherProcessWroteMeanwhile) {
    when("BEGIN TRANSACTION", [&] { put(7, 13, 9); });
    EXPECT_EQ(edit("fav2  0 1 10"), 101);
    EXPECT_EQ(rows("SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = 7"), "10");
}

TEST_F(FavListEdit, ShowsInTheServiceList) {
    EXPECT_EQ(edit("fav1  0 7 14  0 2 15  0 3 10"), 101);
    EXPECT_EQ(rows("SELECT Pid FROM Service WHERE FavTag = 1"), "10;14;15");
    m_svfield = {SERVICE_FIELD_CHANNEL_NUMBER, SERVICE_FIELD_CAPTION};
    EXPECT_EQ(joined(dbaccess::get_dbservices("fav1")), "2|S15;3|S10;7|S14");
    platform::state.messages.clear();
}

TEST_F(FavListEdit, WritesFiveThousandEntries) {
    constexpr int kCount = 5000;
    channel_database::Transaction filling(database());
    for (int pid = 1000; pid < 1000 + kCount; ++pid)
        database().dvbs("many", pid);
    filling.commit();
    auto const entries = [](bool reversed) {
        std::vector<std::string> arguments = {"fav4"};
        for (int i = 0; i < kCount; ++i)
            for (int const number : {0, i + 1, 1000 + (reversed ? kCount - 1 - i : i)})
                arguments.push_back(std::to_string(number));
        return arguments;
    };
    std::string const agreeing =
        "SELECT count(*), sum(ChannelNum + ServiceId = 6000), sum(ServiceId - ChannelNum = 999),"
        " (SELECT sum(FavTag4) FROM Service) FROM FavoriteItem WHERE FavoriteId = 9";
    EXPECT_EQ(request(entries(false)), 101);
    EXPECT_EQ(rows(agreeing), "5000|0|5000|5000");
    EXPECT_EQ(request(entries(true)), 0);
    EXPECT_EQ(rows(agreeing), "5000|5000|0|5000");
    EXPECT_EQ(edit("fav4"), 101);
    EXPECT_EQ(rows(agreeing), "0|NULL|NULL|0");
}

// They can be no entry's, and a list that holds them can be edited, and emptied, all the same.
TEST_F(FavListEdit, LeavesItemsWithoutAServiceWhereTheyAre) {
    change("UPDATE FavoriteItem SET ServiceId = NULL WHERE Id = 711");
    change("UPDATE FavoriteItem SET ServiceId = 'x' WHERE Id = 712");
    for (char const* arguments : {"fav2  0 1 10  0 2 15", "fav2"}) {
        EXPECT_EQ(edit(arguments), 101);
        EXPECT_THAT(texts(),
                    testing::ElementsAre("2 items of list 7 have no service id, passed over"));
        EXPECT_EQ(rows("SELECT Id FROM FavoriteItem WHERE Id IN (711, 712)"), "711;712");
    }
    EXPECT_EQ(rows("SELECT count(*) FROM FavoriteItem WHERE FavoriteId = 7"), "2");
}

}  // namespace
