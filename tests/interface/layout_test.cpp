// The layout that the set's processes were built with: where each field of the snapshot and of an
// item lies, and what the items' virtual tables hold.
#include <channellist-access/item_info.h>
#include <channellist-access/service_snapshot.h>
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>

#include <type_traits>

namespace {

struct Field {
    char const* name;
    void const* address;  // null for a field that no reference reaches
    std::size_t size, alignment;
};

template <typename Type>
Field field(char const* name, Type& value) {
    return {name, &value, sizeof value, alignof(Type)};
}

std::size_t aligned(std::size_t offset, std::size_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

// The fields follow each other from `offset` on; returns the size of a record that ends there.
std::size_t expectInOrder(void const* record, std::size_t offset, std::size_t alignment,
                          std::vector<Field> const& fields) {
    for (Field const& f : fields) {
        offset = aligned(offset, f.alignment);
        auto const at = static_cast<char const*>(record) + offset;
        EXPECT_TRUE(f.address == nullptr || f.address == at) << f.name;
        offset += f.size;
    }
    return aligned(offset, alignment);
}

TEST(Layout, SnapshotFieldsKeepTheirOrder) {
    ServiceSnapshot s{};
#define FIELD(name) field(#name, s.name)
    // clang-format off
    EXPECT_EQ(expectInOrder(&s, 0, alignof(ServiceSnapshot), {
        FIELD(caption), FIELD(locator), FIELD(userIndex), FIELD(uuid), FIELD(originalAncestor),
        FIELD(originalUuid), FIELD(tunerUuid), FIELD(originalLcn), FIELD(nitId),
        FIELD(previewPage), FIELD(subtitlePage), FIELD(attributes), FIELD(encoding),
        FIELD(itemKind), FIELD(servicePid), FIELD(visible), FIELD(selectable)}), sizeof s);
    // clang-format on
#undef FIELD
}

TEST(Layout, ItemFieldsKeepTheirOrder) {
    ItemInfo i;
    Field const flag = {"flag", nullptr, sizeof(bool), alignof(bool)};
    // clang-format off
#define FIELD(name) field(#name, i.get##name())
    EXPECT_EQ(expectInOrder(&i, sizeof(void*), alignof(ItemInfo), {
        FIELD(ItemType), FIELD(ItemSubType), FIELD(Caption), FIELD(UUID), FIELD(OriginalAncestor),
        FIELD(OriginalUuid), FIELD(OriginalVolume), FIELD(Locator), FIELD(Playtime),
        FIELD(ThumbURL), FIELD(StationName), FIELD(StationDescription),
        FIELD(LongStationDescription), FIELD(Title), FIELD(Genre), FIELD(Description),
        FIELD(Comment), FIELD(Date), FIELD(UserIndex), FIELD(ParentalRating), FIELD(CreationTime),
        FIELD(ModificationTime), FIELD(EncryptionScheme), FIELD(EncryptionInfo),
        FIELD(DisplayRules), FIELD(PreviewPage), FIELD(SubtitlePage), FIELD(Encoding), flag,
        FIELD(FileSize), FIELD(DateNumeric), FIELD(Attributes), FIELD(MaxPosition),
        FIELD(VolumeCorrection), flag, flag, FIELD(SoundSelection), FIELD(TunerUUID),
        FIELD(Artist), FIELD(Album), FIELD(AlbumUUID), FIELD(TrackNum), FIELD(Year),
        FIELD(Bitrate), FIELD(ServicePid), FIELD(UpdateTag), FIELD(OriginalLcn), FIELD(NitId)}),
        sizeof i);
#undef FIELD
    // clang-format on
    EXPECT_EQ(&i.getItemLocator(), &i.getLocator());
}

TEST(Layout, FlagsLieBehindTheirNeighbours) {
    ItemInfo i;
    auto const flags = [&i] {
        auto const at = [](int const& neighbour, std::size_t distance) {
            return reinterpret_cast<char const*>(&neighbour)[distance] != 0 ? '1' : '0';
        };
        return std::string{at(i.getEncoding(), 4), at(i.getVolumeCorrection(), 4),
                           at(i.getVolumeCorrection(), 5)};
    };
    i.setReceivable(false);
    EXPECT_EQ(flags(), "011");
    i.setVisible(false);
    EXPECT_EQ(flags(), "001");
    i.setSelectable(false);
    EXPECT_EQ(flags(), "000");
}

// A virtual table: offset to top, type, then the slots; the destructor takes two.
TEST(Layout, DestructorIsTheOnlyVirtualOperation) {
    for (char const* name :
         {"_ZTV8ItemInfo", "_ZTV13VideoItemInfo", "_ZTV13MusicItemInfo", "_ZTV14FolderItemInfo"}) {
        void* const table = dlsym(RTLD_DEFAULT, name);
        ASSERT_NE(table, nullptr) << name;
        Dl_info where;
        void* symbol = nullptr;
        ASSERT_NE(dladdr1(table, &where, &symbol, RTLD_DL_SYMENT), 0) << name;
        EXPECT_EQ(static_cast<ElfW(Sym)*>(symbol)->st_size, 4 * sizeof(void*)) << name;
    }
}

static_assert(sizeof(VideoItemInfo) == sizeof(ItemInfo) &&
              sizeof(MusicItemInfo) == sizeof(ItemInfo) &&
              sizeof(FolderItemInfo) == sizeof(ItemInfo));
static_assert(std::is_same_v<std::underlying_type_t<itemType>, unsigned int>);

}  // namespace
