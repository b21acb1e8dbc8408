// Edits of the All list and of every other list that is no FAV list.
#include <array>

#include "edits/edit_test.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;

using AllListEdit = EditTest;

TEST_F(AllListEdit, DeletesEverywhereAndRenumbersTheListsAskedFor) {
    EXPECT_EQ(edit("all  0 1 11  21 2 12  0 3 99"), 101);
    EXPECT_EQ(changes(),
              "Item 111: ChannelNum 2>1; Item 112: ChannelNum 3>2; Item 112: isDeleted"
              " 0>1; Item 612: isDeleted 0>1; Item 614: ChannelNum 9>2; Item 712:"
              " isDeleted 0>1; Item 812: isDeleted 0>1; List 1: UpdateTag 0>1; List 6:"
              " UpdateTag 0>1; List 6: MaxChannelNumber 0>2; List 8: UpdateTag 0>1");
    EXPECT_EQ(statements(), R"(SELECT Pid FROM FavoriteList WHERE Uuid = 'all';
UPDATE FavoriteList SET UpdateTag = case UpdateTag WHEN 65535 then 0 else UpdateTag+1 end Where Pid= 1;
SELECT Pid FROM FavoriteList WHERE Creator like 'User.tvFAV%' ;
BEGIN TRANSACTION
UPDATE FavoriteItem SET ChannelNum = 1, isDeleted =0 WHERE FavoriteId= 1 AND serviceId= 11;
UPDATE FavoriteItem SET isDeleted = 0 WHERE FavoriteId IN(6,7,8,9) AND serviceId= 11;
UPDATE FavoriteItem SET ChannelNum = 2, isDeleted =1 WHERE FavoriteId= 1 AND serviceId= 12;
UPDATE FavoriteItem SET isDeleted = 1 WHERE FavoriteId IN(6,7,8,9) AND serviceId= 12;
UPDATE FavoriteItem SET ChannelNum = 3, isDeleted =0 WHERE FavoriteId= 1 AND serviceId= 99;
UPDATE FavoriteItem SET isDeleted = 0 WHERE FavoriteId IN(6,7,8,9) AND serviceId= 99;
SELECT Id FROM FavoriteItem, Service WHERE FavoriteId = 6 AND isDeleted = 0 AND Service.Pid=FavoriteItem.ServiceId  ORDER BY ChannelNum;
UPDATE FavoriteItem SET ChannelNum = 1 WHERE Id = 610;
UPDATE FavoriteItem SET ChannelNum = 2 WHERE Id = 614;
UPDATE FavoriteList SET MaxChannelNumber = (SELECT max(ChannelNum) FROM FavoriteItem WHERE FavoriteId=6 AND isDeleted = 0) WHERE Pid = 6;
UPDATE FavoriteList SET UpdateTag = case UpdateTag WHEN 65535 then 0 else UpdateTag+1 end Where Pid= 6;
SELECT Id FROM FavoriteItem, Service WHERE FavoriteId = 8 AND isDeleted = 0 AND Service.Pid=FavoriteItem.ServiceId  ORDER BY ChannelNum;
UPDATE FavoriteList SET UpdateTag = case UpdateTag WHEN 65535 then 0 else UpdateTag+1 end Where Pid= 8;
COMMIT TRANSACTION
)");
    EXPECT_THAT(texts(4000),
                IsSupersetOf({"serviceId=11,isDeleted=0,channelnumber:1,flag=0,restoreEdit:0.",
                              "serviceId=12,isDeleted=1,channelnumber:2,flag=21,restoreEdit:0."}));
    EXPECT_THAT(texts(3000), ElementsAre("renumberFAVListId[j0]:6.", "renumberFAVListId[j2]:8.",
                                         "FAV3 list doesn't have any service!"));
}

TEST_F(AllListEdit, ObeysTheFlags) {
    // Arguments; deleted flags of service 12 in lists 1, 6, 7 and 8; tags of the six lists.
    std::array<std::string, 3> const cases[] = {
        {"all  0 3 12", "0000", "100000"},
        {"all  2 3 12", "0000", "100000"},
        {"all  10 3 12", "0000", "100100"},
        {"all  1 3 12", "1111", "100000"},
        {"all  4294967233 3 12", "1111", "100000"},
        {"all  4294967295 3 12", "1111", "101111"},
        {"all  33 3 12  18 9 99  18 9 99  13 3 12", "1111", "101111"},
    };
    for (auto const& [arguments, deleted, tags] : cases) {
        SCOPED_TRACE(arguments);
        change("UPDATE FavoriteItem SET isDeleted = 1 WHERE ServiceId = 12");
        change("UPDATE FavoriteList SET UpdateTag = 0");
        EXPECT_EQ(edit(arguments), 101);
        EXPECT_EQ(rows("SELECT group_concat(isDeleted, '') FROM FavoriteItem WHERE ServiceId = 12"
                       " UNION ALL SELECT group_concat(UpdateTag, '') FROM FavoriteList"),
                  deleted + ";" + tags);
    }
    EXPECT_THAT(texts(4000),
                Contains("serviceId=99,isDeleted=0,channelnumber:9,flag=18,restoreEdit:1."));

    // It is the edit of every other list.
    EXPECT_EQ(edit("cable  1 8 11  0 5 14"), 101);
    EXPECT_EQ(changes(),
              "Item 211: ChannelNum 2>8; Item 211: isDeleted 0>1; "
              "Item 711: isDeleted 0>1; List 2: UpdateTag 0>1");
}

// What fails in a renumbering is logged; the edit stands, and the renumbering goes on.
TEST_F(AllListEdit, IsCommittedWhenARenumberingFails) {
    ott("('FAV3', 1)");
    change("UPDATE FavoriteItem SET ChannelNum = ChannelNum + 4 WHERE FavoriteId IN (7, 8)");
    forbid("UPDATE OF ChannelNum ON FavoriteItem", "NEW.Id = 711");
    EXPECT_EQ(edit("all  26 1 10"), 101);
    EXPECT_EQ(changes(),
              "Item 710: ChannelNum 5>1; Item 812: ChannelNum 8>2; List 1: UpdateTag"
              " 0>1; List 7: UpdateTag 0>1; List 7: MaxChannelNumber 0>7; List 8:"
              " UpdateTag 0>1; List 8: MaxChannelNumber 0>2");
    std::string const hint = ", hint:'Renumber fav item in the case of All list edit.'.";
    EXPECT_THAT(texts(),
                ElementsAre("sqlite3_step failed:19" + hint, "sqlite3_step failed:21" + hint));
}

// Its owner writes between the numbers of two lists.
TEST_F(AllListEdit, RenumbersAroundOneStateOfTheOttDatabase) {
    ott("('FAV1', 1), ('FAV2', 1)");
    channel_database::ChannelDatabase owner(ottFile());
    owner.run("PRAGMA journal_mode = WAL");  // where a reader holds up nobody
    when("UPDATE FavoriteList SET MaxChannelNumber",
         [&] { owner.run("DELETE FROM SQL_OTTFavChannels"); });
    EXPECT_EQ(edit("all  14 4 13"), 101);
    EXPECT_THAT(changes(), HasSubstr("List 7: MaxChannelNumber 0>4"));
    EXPECT_EQ(edit("all  14 4 13"), 101) << "the state is no longer held";
    EXPECT_THAT(changes(), HasSubstr("List 7: MaxChannelNumber 4>3"));
}

}  // namespace
