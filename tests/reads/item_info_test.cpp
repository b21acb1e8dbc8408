// The item classes, as a host uses them.
#include <channellist-access/item_info.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace {

// clang-format off
#define FIELD(name) {&ItemInfo::get##name, &ItemInfo::set##name}
const struct {
    std::string const& (ItemInfo::*get)() const;
    void (ItemInfo::*set)(std::string const&);
} kTexts[] = {
    FIELD(Caption), FIELD(Locator), FIELD(Playtime), FIELD(ThumbURL), FIELD(Title), FIELD(Genre),
    FIELD(Description), FIELD(Comment), FIELD(Date),
    // Those before are stripped, those behind stored as given.
    FIELD(ItemSubType), FIELD(OriginalAncestor), FIELD(OriginalUuid), FIELD(OriginalVolume),
    FIELD(StationName), FIELD(StationDescription), FIELD(LongStationDescription), FIELD(UserIndex),
    FIELD(ParentalRating), FIELD(CreationTime), FIELD(ModificationTime), FIELD(EncryptionScheme),
    FIELD(EncryptionInfo), FIELD(DisplayRules), FIELD(TunerUUID), FIELD(Artist), FIELD(Album),
    FIELD(AlbumUUID), FIELD(TrackNum), FIELD(Year), FIELD(Bitrate), FIELD(UpdateTag),
    FIELD(OriginalLcn), FIELD(NitId),
};
#undef FIELD
constexpr std::size_t kStripped = 9;
// clang-format on

template <typename... Numbers>
std::string joined(Numbers... numbers) {
    return ((std::to_string(numbers) + " ") + ...);
}

std::string numbers(ItemInfo const& i) {
    return joined(static_cast<unsigned>(i.getItemType()), i.getPreviewPage(), i.getSubtitlePage(),
                  i.getEncoding(), i.isReceivable(), i.getFileSize(), i.getDateNumeric(),
                  i.getAttributes(), i.getMaxPosition(), i.getVolumeCorrection(), i.isVisible(),
                  i.isSelectable(), i.getSoundSelection(), i.getServicePid());
}

void expectFilled(ItemInfo const& item) {
    for (std::size_t i = 0; i < std::size(kTexts); ++i) {
        std::string const text = "text " + std::to_string(i) + "\v";
        EXPECT_EQ((item.*kTexts[i].get)(), i < kStripped ? text : " \t " + text + "\r\n") << i;
    }
    EXPECT_EQ(numbers(item), "256 100 -150 3 0 5000000000 -6000000000 -7 4294967295 -8 0 0 9 10 ");
}

TEST(ItemInfo, HoldsEveryFieldByItselfAndCopiesIt) {
    VideoItemInfo item("caption", "uuid");
    int number = 0;
    for (auto const& field : kTexts)
        (item.*field.set)(" \t text " + std::to_string(number++) + "\v\r\n");
    // clang-format off
    item.setItemType(static_cast<itemType>(0x100)); item.setPreviewPage(100);
    item.setSubtitlePage(-150); item.setEncoding(3); item.setReceivable(false);
    item.setFileSize(5000000000ULL); item.setDateNumeric(-6000000000LL); item.setAttributes(-7);
    item.setMaxPosition(4294967295U); item.setVolumeCorrection(-8); item.setVisible(false);
    item.setSelectable(false); item.setSoundSelection(9); item.setServicePid(10);
    // clang-format on
    expectFilled(item);

    ItemInfo copy(item);
    expectFilled(copy);
    EXPECT_EQ(copy.getUUID(), "uuid");
    copy.setItemLocator(" other ");
    EXPECT_EQ(copy.getLocator(), "other");
    EXPECT_EQ(copy.getItemLocator(), "other");
    expectFilled(item);
    static_assert(!std::is_constructible_v<ItemInfo, ItemInfo const&>);
    static_assert(std::has_virtual_destructor_v<ItemInfo>);
}

TEST(ItemInfo, StartsWithTheDefaultsOfItsKind) {
    std::string const defaults = " 0 0 0 1 0 0 0 0 0 1 1 0 0 ";
    VideoItemInfo const video(" Eins ", "v");
    EXPECT_EQ(numbers(video), "4" + defaults);
    EXPECT_EQ(video.getCaption(), " Eins ");
    EXPECT_EQ(video.getUUID(), "v");
    EXPECT_EQ(numbers(MusicItemInfo("", "")), "2" + defaults);
    EXPECT_EQ(numbers(FolderItemInfo("", "")), "32" + defaults);
    EXPECT_EQ(numbers(ItemInfo()), "0" + defaults);
}

TEST(ItemInfo, StripsFourCharactersAtBothEnds) {
    char const* const cases[][2] = {
        {"", ""}, {" \t\n\r", ""}, {"x", "x"}, {" a b\r\n", "a b"}, {"\va\f", "\va\f"}};
    for (auto const& [given, stripped] : cases)
        EXPECT_EQ(ItemInfo::stripValue(given), stripped);
}

}  // namespace
