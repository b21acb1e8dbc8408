// Channel numbers of a FAV list around those of its OTT channels.
#include <tuple>

#include "edits/edit_test.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class Renumbering : public EditTest {
  protected:
    int renumber(unsigned int list, unsigned char index) {
        return watched([=] { return dbaccess::renumberFAVList(list, index); });
    }
    // The numbers of `count` items of FAV4, in their order, beside these OTT positions.
    std::string renumbered(int count, Texts const& positions) {
        std::string values = "('FAV3', 1), ('fav4', 2)";
        for (auto const& position : positions)
            values += ", ('FAV4', '" + position + "')";
        ott(values);
        change("DELETE FROM FavoriteItem WHERE FavoriteId = 9");
        for (int i = 0; i < count; ++i)
            put(9, 15 - i, 100 + i);
        EXPECT_EQ(renumber(9, 4), 0);
        return rows("SELECT ChannelNum FROM FavoriteItem WHERE FavoriteId = 9 ORDER BY Id DESC");
    }
};

TEST_F(Renumbering, LeavesTheOttNumbersFree) {
    std::pair<Texts, char const*> const cases[] = {
        {{}, "1;2;3;4;5;6"},
        {{"5", "3"}, "1;2;4;6;7;8"},
        {{"1", "2", "3"}, "4;5;6;7;8;9"},
        {{"9"}, "1;2;3;4;5;6"},
        {{"3", "3"}, "1;2;3;4;5;6"},
        {{"1", "1", "1"}, "1;1;2;3;4;5"},
        {{"0"}, "0;1;2;3;4;5"},
        {{"4000000000", "2"}, "1;3;4;5;6;7"},  // read as 2147483647
        // Negative positions wrap: 4294967294, 4000000000, and 4294967295, which has no sequence.
        {{"-2", "1", "5"}, "2;3;4;6;7;8"},
        {{"-294967296", "2", "2"}, "1;2;3;4;5;6"},
        {{"-1"}, "-1;0;1;2;3;4"},
        {{"-1", "3", "-1", "0"}, "0;3;-1;-1;0;1"},
    };
    platform::state.isEnabled = [](unsigned int level) { return level != 4000; };
    for (auto const& [positions, numbers] : cases)
        EXPECT_EQ(renumbered(6, positions), numbers) << testing::PrintToString(positions);
    EXPECT_THAT(platform::state.messages, IsEmpty());
}

TEST_F(Renumbering, CountsItemsThatAreNotDeletedAndHaveAService) {
    change("UPDATE FavoriteItem SET isDeleted = 1, ChannelNum = 90 WHERE Id = 711");
    change("UPDATE FavoriteItem SET ServiceId = 99, ChannelNum = 40 WHERE Id = 710");
    change("UPDATE FavoriteItem SET ChannelNum = 30 WHERE Id = 712");
    ott("('FAV1', 1), ('FAV2', 2)");
    EXPECT_EQ(renumber(7, 1), 0);  // the index chooses the OTT list, the key the items
    EXPECT_EQ(changes(), "Item 712: ChannelNum 30>2; List 7: MaxChannelNumber 0>40");
}

// The numbers are messages of their own, without prefix and line feed.
TEST_F(Renumbering, TracesItsNumbers) {
    ott("('FAV2', 5), ('FAV2', 3)");
    std::pair<std::pair<unsigned int, unsigned char>, char const*> const cases[] = {
        {{7, 2},
         "OTT Channel Number in FAV2 list:[\n3 5 ].Broadcast Channel Number in FAV2 list:[\n"
         "1 2 4 6 ]. New channelNumer:1 \n New channelNumer:2 \n New channelNumer:4 \n"},
        {{8, 3},
         "OTT Channel Number in FAV3 list:[\n].There's NO OTT service in FAV3\n"
         " New channelNumer:1 \n"}};
    for (auto const& [arguments, expected] : cases) {
        EXPECT_EQ(renumber(arguments.first, arguments.second), 0);
        std::string all;
        for (auto const& message : platform::state.messages) {
            bool const isBare = message.format == "%d " || message.format == "].";
            all += isBare ? message.text.substr(sizeof "MALFORMED") : message.text + "\n";
        }
        EXPECT_THAT(all, EndsWith(expected));
    }
}

TEST_F(Renumbering, ThatCannotBeginWritesNothing) {
    std::tuple<unsigned int, unsigned char, char const*> const cases[] = {
        {7, 0, "FAV index is invalid: 0."},
        {7, 5, "FAV index is invalid: 5."},
        {9, 4, "FAV4 list doesn't have any service!"},
        {99, 1, "FAV1 list doesn't have any service!"}};
    for (auto const& [list, index, notice] : cases) {
        EXPECT_EQ(renumber(list, index), -2);
        EXPECT_THAT(texts(3000), ElementsAre(notice));
        EXPECT_EQ(changes(), "");
    }
    change("ALTER TABLE FavoriteItem RENAME COLUMN isDeleted TO gone");
    EXPECT_EQ(renumber(7, 2), -2);
    EXPECT_THAT(texts(3000), ElementsAre("FAV2 list doesn't have any service!"));
    EXPECT_THAT(platform::state.openedPaths, IsEmpty()) << "read the OTT channels in vain";
}

}  // namespace
