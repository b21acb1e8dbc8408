// The item classes of one kind each: TV service, radio service, list.
#include <channellist-access/item_info.h>

VideoItemInfo::VideoItemInfo(std::string const& caption, std::string const& uuid)
    : ItemInfo(ITEM_TYPE_VIDEO, caption, uuid) {}

VideoItemInfo::~VideoItemInfo() = default;

MusicItemInfo::MusicItemInfo(std::string const& caption, std::string const& uuid)
    : ItemInfo(ITEM_TYPE_AUDIO, caption, uuid) {}

MusicItemInfo::~MusicItemInfo() = default;

FolderItemInfo::FolderItemInfo(std::string const& caption, std::string const& uuid)
    : ItemInfo(ITEM_TYPE_FOLDER, caption, uuid) {}

FolderItemInfo::~FolderItemInfo() = default;
