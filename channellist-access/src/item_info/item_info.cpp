#include <channellist-access/item_info.h>

#include "support/text.h"

ItemInfo::ItemInfo() = default;

ItemInfo::ItemInfo(itemType type, std::string const& caption, std::string const& uuid)
    : itemType_(type), caption_(caption), uuid_(uuid) {}

ItemInfo::ItemInfo(ItemInfo& other) = default;

ItemInfo::~ItemInfo() = default;

std::string ItemInfo::stripValue(std::string const& value) {
    return std::string(channellist::stripped(value));
}

// One line an accessor, in the order of the fields.
// clang-format off
itemType const& ItemInfo::getItemType() const { return itemType_; }
void ItemInfo::setItemType(itemType value) { itemType_ = value; }
std::string const& ItemInfo::getItemSubType() const { return itemSubType_; }
void ItemInfo::setItemSubType(std::string const& value) { itemSubType_ = value; }
std::string const& ItemInfo::getCaption() const { return caption_; }
void ItemInfo::setCaption(std::string const& value) { caption_ = stripValue(value); }
std::string const& ItemInfo::getUUID() const { return uuid_; }
std::string const& ItemInfo::getOriginalAncestor() const { return originalAncestor_; }
void ItemInfo::setOriginalAncestor(std::string const& value) { originalAncestor_ = value; }
std::string const& ItemInfo::getOriginalUuid() const { return originalUuid_; }
void ItemInfo::setOriginalUuid(std::string const& value) { originalUuid_ = value; }
std::string const& ItemInfo::getOriginalVolume() const { return originalVolume_; }
void ItemInfo::setOriginalVolume(std::string const& value) { originalVolume_ = value; }
std::string const& ItemInfo::getLocator() const { return locator_; }
std::string const& ItemInfo::getItemLocator() const { return locator_; }
void ItemInfo::setLocator(std::string const& value) { locator_ = stripValue(value); }
void ItemInfo::setItemLocator(std::string const& value) { locator_ = stripValue(value); }
std::string const& ItemInfo::getPlaytime() const { return playtime_; }
void ItemInfo::setPlaytime(std::string const& value) { playtime_ = stripValue(value); }
std::string const& ItemInfo::getThumbURL() const { return thumbUrl_; }
void ItemInfo::setThumbURL(std::string const& value) { thumbUrl_ = stripValue(value); }
std::string const& ItemInfo::getStationName() const { return stationName_; }
void ItemInfo::setStationName(std::string const& value) { stationName_ = value; }
std::string const& ItemInfo::getStationDescription() const { return stationDescription_; }
void ItemInfo::setStationDescription(std::string const& value) { stationDescription_ = value; }
std::string const& ItemInfo::getLongStationDescription() const { return longStationDescription_; }
void ItemInfo::setLongStationDescription(std::string const& value) { longStationDescription_ = value; }
std::string const& ItemInfo::getTitle() const { return title_; }
void ItemInfo::setTitle(std::string const& value) { title_ = stripValue(value); }
std::string const& ItemInfo::getGenre() const { return genre_; }
void ItemInfo::setGenre(std::string const& value) { genre_ = stripValue(value); }
std::string const& ItemInfo::getDescription() const { return description_; }
void ItemInfo::setDescription(std::string const& value) { description_ = stripValue(value); }
std::string const& ItemInfo::getComment() const { return comment_; }
void ItemInfo::setComment(std::string const& value) { comment_ = stripValue(value); }
std::string const& ItemInfo::getDate() const { return date_; }
void ItemInfo::setDate(std::string const& value) { date_ = stripValue(value); }
std::string const& ItemInfo::getUserIndex() const { return userIndex_; }
void ItemInfo::setUserIndex(std::string const& value) { userIndex_ = value; }
std::string const& ItemInfo::getParentalRating() const { return parentalRating_; }
void ItemInfo::setParentalRating(std::string const& value) { parentalRating_ = value; }
std::string const& ItemInfo::getCreationTime() const { return creationTime_; }
void ItemInfo::setCreationTime(std::string const& value) { creationTime_ = value; }
std::string const& ItemInfo::getModificationTime() const { return modificationTime_; }
void ItemInfo::setModificationTime(std::string const& value) { modificationTime_ = value; }
std::string const& ItemInfo::getEncryptionScheme() const { return encryptionScheme_; }
void ItemInfo::setEncryptionScheme(std::string const& value) { encryptionScheme_ = value; }
std::string const& ItemInfo::getEncryptionInfo() const { return encryptionInfo_; }
void ItemInfo::setEncryptionInfo(std::string const& value) { encryptionInfo_ = value; }
std::string const& ItemInfo::getDisplayRules() const { return displayRules_; }
void ItemInfo::setDisplayRules(std::string const& value) { displayRules_ = value; }
int const& ItemInfo::getPreviewPage() const { return previewPage_; }
void ItemInfo::setPreviewPage(int const& value) { previewPage_ = value; }
int const& ItemInfo::getSubtitlePage() const { return subtitlePage_; }
void ItemInfo::setSubtitlePage(int const& value) { subtitlePage_ = value; }
int const& ItemInfo::getEncoding() const { return encoding_; }
void ItemInfo::setEncoding(int const& value) { encoding_ = value; }
bool ItemInfo::isReceivable() const { return receivable_; }
void ItemInfo::setReceivable(bool value) { receivable_ = value; }
unsigned long long const& ItemInfo::getFileSize() const { return fileSize_; }
void ItemInfo::setFileSize(unsigned long long const& value) { fileSize_ = value; }
long long const& ItemInfo::getDateNumeric() const { return dateNumeric_; }
void ItemInfo::setDateNumeric(long long const& value) { dateNumeric_ = value; }
int const& ItemInfo::getAttributes() const { return attributes_; }
void ItemInfo::setAttributes(int const& value) { attributes_ = value; }
unsigned int const& ItemInfo::getMaxPosition() const { return maxPosition_; }
void ItemInfo::setMaxPosition(unsigned int const& value) { maxPosition_ = value; }
int const& ItemInfo::getVolumeCorrection() const { return volumeCorrection_; }
void ItemInfo::setVolumeCorrection(int const& value) { volumeCorrection_ = value; }
bool ItemInfo::isVisible() const { return visible_; }
void ItemInfo::setVisible(bool value) { visible_ = value; }
bool ItemInfo::isSelectable() const { return selectable_; }
void ItemInfo::setSelectable(bool value) { selectable_ = value; }
unsigned int const& ItemInfo::getSoundSelection() const { return soundSelection_; }
void ItemInfo::setSoundSelection(unsigned int const& value) { soundSelection_ = value; }
std::string const& ItemInfo::getTunerUUID() const { return tunerUuid_; }
void ItemInfo::setTunerUUID(std::string const& value) { tunerUuid_ = value; }
std::string const& ItemInfo::getArtist() const { return artist_; }
void ItemInfo::setArtist(std::string const& value) { artist_ = value; }
std::string const& ItemInfo::getAlbum() const { return album_; }
void ItemInfo::setAlbum(std::string const& value) { album_ = value; }
std::string const& ItemInfo::getAlbumUUID() const { return albumUuid_; }
void ItemInfo::setAlbumUUID(std::string const& value) { albumUuid_ = value; }
std::string const& ItemInfo::getTrackNum() const { return trackNum_; }
void ItemInfo::setTrackNum(std::string const& value) { trackNum_ = value; }
std::string const& ItemInfo::getYear() const { return year_; }
void ItemInfo::setYear(std::string const& value) { year_ = value; }
std::string const& ItemInfo::getBitrate() const { return bitrate_; }
void ItemInfo::setBitrate(std::string const& value) { bitrate_ = value; }
unsigned int const& ItemInfo::getServicePid() const { return servicePid_; }
void ItemInfo::setServicePid(unsigned int const& value) { servicePid_ = value; }
std::string const& ItemInfo::getUpdateTag() const { return updateTag_; }
void ItemInfo::setUpdateTag(std::string const& value) { updateTag_ = value; }
std::string const& ItemInfo::getOriginalLcn() const { return originalLcn_; }
void ItemInfo::setOriginalLcn(std::string const& value) { originalLcn_ = value; }
std::string const& ItemInfo::getNitId() const { return nitId_; }
void ItemInfo::setNitId(std::string const& value) { nitId_ = value; }
// clang-format on
