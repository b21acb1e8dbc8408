// The layout that the set's processes were built with: where each field of the snapshot and of an
// item lies, and what the items' virtual tables hold.
#include <channellist-access/item_info.h>
#include <channellist-access/service_snapshot.h>
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstring>
#include <type_traits>

namespace {

struct Field {
    const char* name;
    const void* address;  // null for a field that no reference reaches
    std::size_t size;
    std::size_t alignment;
};

template <typename Type>
Field field(const char* name, Type& value) {
    return {name, &value, sizeof value, alignof(Type)};
}

std::size_t aligned(std::size_t offset, std::size_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

// The fields follow each other from `offset` on; returns the size of a record that ends there.
std::size_t expectInOrder(const void* record, std::size_t offset, std::size_t alignment,
                          const std::vector<Field>& fields) {
    for (const Field& f : fields) {
        offset = aligned(offset, f.alignment);
        if (f.address != nullptr) {
            EXPECT_EQ(static_cast<const char*>(f.address) - static_cast<const char*>(record),
                      static_cast<std::ptrdiff_t>(offset))
                << f.name;
        }
        offset += f.size;
    }
    return aligned(offset, alignment);
}

TEST(Layout, SnapshotFieldsKeepTheirOrder) {
    ServiceSnapshot s{};
#define FIELD(name) field(#name, s.name)
    EXPECT_EQ(
        expectInOrder(
            &s, 0, alignof(ServiceSnapshot),
            {FIELD(caption), FIELD(locator), FIELD(userIndex), FIELD(uuid), FIELD(originalAncestor),
             FIELD(originalUuid), FIELD(tunerUuid), FIELD(originalLcn), FIELD(nitId),
             FIELD(previewPage), FIELD(subtitlePage), FIELD(attributes), FIELD(encoding),
             FIELD(itemKind), FIELD(servicePid), FIELD(visible), FIELD(selectable)}),
        sizeof s);
#undef FIELD
}

TEST(Layout, ItemFieldsKeepTheirOrder) {
    ItemInfo i;
    const Field flag = {"flag", nullptr, sizeof(bool), alignof(bool)};
#define FIELD(getter) field(#getter, i.getter())
    EXPECT_EQ(expectInOrder(&i, sizeof(void*), alignof(ItemInfo),
                            {FIELD(getItemType),
                             FIELD(getItemSubType),
                             FIELD(getCaption),
                             FIELD(getUUID),
                             FIELD(getOriginalAncestor),
                             FIELD(getOriginalUuid),
                             FIELD(getOriginalVolume),
                             FIELD(getLocator),
                             FIELD(getPlaytime),
                             FIELD(getThumbURL),
                             FIELD(getStationName),
                             FIELD(getStationDescription),
                             FIELD(getLongStationDescription),
                             FIELD(getTitle),
                             FIELD(getGenre),
                             FIELD(getDescription),
                             FIELD(getComment),
                             FIELD(getDate),
                             FIELD(getUserIndex),
                             FIELD(getParentalRating),
                             FIELD(getCreationTime),
                             FIELD(getModificationTime),
                             FIELD(getEncryptionScheme),
                             FIELD(getEncryptionInfo),
                             FIELD(getDisplayRules),
                             FIELD(getPreviewPage),
                             FIELD(getSubtitlePage),
                             FIELD(getEncoding),
                             flag,
                             FIELD(getFileSize),
                             FIELD(getDateNumeric),
                             FIELD(getAttributes),
                             FIELD(getMaxPosition),
                             FIELD(getVolumeCorrection),
                             flag,
                             flag,
                             FIELD(getSoundSelection),
                             FIELD(getTunerUUID),
                             FIELD(getArtist),
                             FIELD(getAlbum),
                             FIELD(getAlbumUUID),
                             FIELD(getTrackNum),
                             FIELD(getYear),
                             FIELD(getBitrate),
                             FIELD(getServicePid),
                             FIELD(getUpdateTag),
                             FIELD(getOriginalLcn),
                             FIELD(getNitId)}),
              sizeof i);
#undef FIELD
    EXPECT_EQ(&i.getItemLocator(), &i.getLocator());
}

TEST(Layout, FlagsLieBehindTheirNeighbours) {
    ItemInfo i;
    const auto at = [&i](const void* neighbour, std::size_t distance) {
        bool flag = true;
        std::memcpy(&flag, static_cast<const char*>(neighbour) + distance, sizeof flag);
        return flag;
    };
    const auto flags = [&] {
        return std::vector<bool>{at(&i.getEncoding(), 4), at(&i.getVolumeCorrection(), 4),
                                 at(&i.getVolumeCorrection(), 5)};
    };
    i.setReceivable(false);
    EXPECT_EQ(flags(), (std::vector<bool>{false, true, true}));
    i.setVisible(false);
    EXPECT_EQ(flags(), (std::vector<bool>{false, false, true}));
    i.setSelectable(false);
    EXPECT_EQ(flags(), (std::vector<bool>{false, false, false}));
}

// A virtual table: offset to top, type, then the slots; the destructor takes two.
TEST(Layout, DestructorIsTheOnlyVirtualOperation) {
    for (const char* name :
         {"_ZTV8ItemInfo", "_ZTV13VideoItemInfo", "_ZTV13MusicItemInfo", "_ZTV14FolderItemInfo"}) {
        void* const table = dlsym(RTLD_DEFAULT, name);
        ASSERT_NE(table, nullptr) << name;
        Dl_info where;
        void* symbol = nullptr;
        ASSERT_NE(dladdr1(table, &where, &symbol, RTLD_DL_SYMENT), 0) << name;
        EXPECT_EQ(static_cast<ElfW(Sym)*>(symbol)->st_size, 4 * sizeof(void*)) << name;
    }
}

TEST(Layout, ItemKindsAddNothing) {
    EXPECT_EQ(sizeof(VideoItemInfo), sizeof(ItemInfo));
    EXPECT_EQ(sizeof(MusicItemInfo), sizeof(ItemInfo));
    EXPECT_EQ(sizeof(FolderItemInfo), sizeof(ItemInfo));
    EXPECT_TRUE((std::is_base_of<ItemInfo, FolderItemInfo>::value));
    EXPECT_TRUE((std::is_same<std::underlying_type<itemType>::type, unsigned int>::value));
    EXPECT_TRUE((std::is_constructible<ItemInfo, ItemInfo&>::value));
    EXPECT_FALSE((std::is_constructible<ItemInfo, ItemInfo const&>::value));
}

}  // namespace
