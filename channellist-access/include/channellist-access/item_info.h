/// @file
/// The item classes, each a service or a list as an object: a broadcast service, an external input
/// shown as a service, or a list ("folder"). Their vocabulary follows the UPnP content directory.
///
/// They serve hosts that hand an item on as an object, and fill it from a result row or `sv`. The
/// library makes none for a row of its own: 34 strings would be built and freed for the few
/// that a row shows. A service is a record of views there, of the kind that VideoItemInfo or
/// MusicItemInfo stands for, and so is a list; without the properties that no column and no field
/// of `sv` shows: the UPnP class (sub-type), title, sound selection, volume correction and the icon
/// (thumb URL).
#ifndef CHANNELLIST_ACCESS_ITEM_INFO_H
#define CHANNELLIST_ACCESS_ITEM_INFO_H

#include <channellist-access/export.h>

#include <string>

/// The kind of an item, a bit value. The library itself sets the named values only; a row's item
/// type column passes the bits 0x13F.
enum itemType : unsigned int {
    ITEM_TYPE_NONE = 0,    ///< an item made without a kind
    ITEM_TYPE_AUDIO = 2,   ///< a radio service
    ITEM_TYPE_VIDEO = 4,   ///< a TV service or an external input
    ITEM_TYPE_FOLDER = 32  ///< a list
};

/// A service or a list: a plain value, one field per property.
///
/// Getters of strings and numbers return a reference to the field, valid as long as the item.
/// Setters marked "stripped" store stripValue() of their argument, all others the argument itself.
/// Any setter or constructor may raise `std::bad_alloc`; a setter then leaves the field as it was.
/// Items have no lock: whoever shares one between threads serialises the access.
class CHANNELLIST_ACCESS_EXPORT ItemInfo {
  public:
    /// An empty item: kind ITEM_TYPE_NONE, strings empty, numbers (the service id too) 0,
    /// receivable, visible and selectable true.
    ItemInfo();

    /// As ItemInfo(), with kind, caption (not stripped) and UUID from the arguments.
    ItemInfo(itemType type, std::string const& caption, std::string const& uuid);

    /// Copies every field. Takes a non-const reference: a constant item is not copied this way.
    ItemInfo(ItemInfo& other);

    /// Copies every field.
    ItemInfo& operator=(ItemInfo const& other) = default;

    virtual ~ItemInfo();

    /// Returns `value` without leading and trailing blanks, tabs, line feeds and carriage returns
    /// (no other character counts as white space); white space inside stays.
    static std::string stripValue(std::string const& value);

    itemType const& getItemType() const;                 ///< item kind
    void setItemType(itemType value);                    ///< stored as given
    std::string const& getItemSubType() const;           ///< UPnP item class, "object.item..."
    void setItemSubType(std::string const& value);       ///< stored as given
    std::string const& getCaption() const;               ///< display name
    void setCaption(std::string const& value);           ///< stripped
    std::string const& getUUID() const;                  ///< identity; set by the constructors only
    std::string const& getOriginalAncestor() const;      ///< network id of a service or list
    void setOriginalAncestor(std::string const& value);  ///< stored as given
    std::string const& getOriginalUuid() const;          ///< identity in the list of origin
    void setOriginalUuid(std::string const& value);      ///< stored as given
    std::string const& getOriginalVolume() const;        ///< volume of origin
    void setOriginalVolume(std::string const& value);    ///< stored as given
    std::string const& getLocator() const;               ///< tuning URI
    std::string const& getItemLocator() const;           ///< the same field as getLocator()
    void setLocator(std::string const& value);           ///< stripped
    void setItemLocator(std::string const& value);       ///< stripped
    std::string const& getPlaytime() const;              ///< play time
    void setPlaytime(std::string const& value);          ///< stripped
    std::string const& getThumbURL() const;              ///< thumbnail URL
    void setThumbURL(std::string const& value);          ///< stripped
    std::string const& getStationName() const;           ///< station name
    void setStationName(std::string const& value);       ///< stored as given
    std::string const& getStationDescription() const;    ///< station description
    void setStationDescription(std::string const& value);      ///< stored as given
    std::string const& getLongStationDescription() const;      ///< long station description
    void setLongStationDescription(std::string const& value);  ///< stored as given
    std::string const& getTitle() const;                       ///< title
    void setTitle(std::string const& value);                   ///< stripped
    std::string const& getGenre() const;                       ///< genre
    void setGenre(std::string const& value);                   ///< stripped
    std::string const& getDescription() const;                 ///< description
    void setDescription(std::string const& value);             ///< stripped
    std::string const& getComment() const;                     ///< comment
    void setComment(std::string const& value);                 ///< stripped
    std::string const& getDate() const;                        ///< date
    void setDate(std::string const& value);                    ///< stripped
    std::string const& getUserIndex() const;                   ///< a service's channel number
    void setUserIndex(std::string const& value);               ///< stored as given
    std::string const& getParentalRating() const;              ///< parental rating
    void setParentalRating(std::string const& value);          ///< stored as given
    std::string const& getCreationTime() const;                ///< creation time
    void setCreationTime(std::string const& value);            ///< stored as given
    std::string const& getModificationTime() const;            ///< modification time
    void setModificationTime(std::string const& value);        ///< stored as given
    std::string const& getEncryptionScheme() const;            ///< encryption scheme
    void setEncryptionScheme(std::string const& value);        ///< stored as given
    std::string const& getEncryptionInfo() const;              ///< encryption info
    void setEncryptionInfo(std::string const& value);          ///< stored as given
    std::string const& getDisplayRules() const;                ///< display rules
    void setDisplayRules(std::string const& value);            ///< stored as given
    int const& getPreviewPage() const;                         ///< Teletext preview page
    void setPreviewPage(int const& value);                     ///< stored as given
    int const& getSubtitlePage() const;                        ///< Teletext subtitle page
    void setSubtitlePage(int const& value);                    ///< stored as given
    int const& getEncoding() const;                            ///< Teletext character encoding
    void setEncoding(int const& value);                        ///< stored as given
    bool isReceivable() const;                                 ///< can be received
    void setReceivable(bool value);                            ///< stored as given
    unsigned long long const& getFileSize() const;             ///< file size in bytes
    void setFileSize(unsigned long long const& value);         ///< stored as given
    long long const& getDateNumeric() const;                   ///< date as a number
    void setDateNumeric(long long const& value);               ///< stored as given
    int const& getAttributes() const;                          ///< attribute bit word
    void setAttributes(int const& value);                      ///< stored as given
    unsigned int const& getMaxPosition() const;                ///< maximum position
    void setMaxPosition(unsigned int const& value);            ///< stored as given
    int const& getVolumeCorrection() const;                    ///< volume correction
    void setVolumeCorrection(int const& value);                ///< stored as given
    bool isVisible() const;                                    ///< shown in the list
    void setVisible(bool value);                               ///< stored as given
    bool isSelectable() const;                                 ///< can be chosen
    void setSelectable(bool value);                            ///< stored as given
    unsigned int const& getSoundSelection() const;             ///< sound selection
    void setSoundSelection(unsigned int const& value);         ///< stored as given
    std::string const& getTunerUUID() const;                   ///< identity of the tuning record
    void setTunerUUID(std::string const& value);               ///< stored as given
    std::string const& getArtist() const;                      ///< artist
    void setArtist(std::string const& value);                  ///< stored as given
    std::string const& getAlbum() const;                       ///< album
    void setAlbum(std::string const& value);                   ///< stored as given
    std::string const& getAlbumUUID() const;                   ///< identity of the album
    void setAlbumUUID(std::string const& value);               ///< stored as given
    std::string const& getTrackNum() const;                    ///< track number
    void setTrackNum(std::string const& value);                ///< stored as given
    std::string const& getYear() const;                        ///< year
    void setYear(std::string const& value);                    ///< stored as given
    std::string const& getBitrate() const;                     ///< bit rate
    void setBitrate(std::string const& value);                 ///< stored as given
    unsigned int const& getServicePid() const;                 ///< the service's database key
    void setServicePid(unsigned int const& value);             ///< stored as given
    std::string const& getUpdateTag() const;                   ///< a list's change counter
    void setUpdateTag(std::string const& value);               ///< stored as given
    std::string const& getOriginalLcn() const;                 ///< logical channel number
    void setOriginalLcn(std::string const& value);             ///< stored as given
    std::string const& getNitId() const;      ///< id of the network information table
    void setNitId(std::string const& value);  ///< stored as given

  private:
    // In the order that the set's processes were built with; the layout is part of the interface.
    itemType itemType_ = ITEM_TYPE_NONE;
    std::string itemSubType_;
    std::string caption_;
    std::string uuid_;
    std::string originalAncestor_;
    std::string originalUuid_;
    std::string originalVolume_;
    std::string locator_;  // two pairs of accessors
    std::string playtime_;
    std::string thumbUrl_;
    std::string stationName_;
    std::string stationDescription_;
    std::string longStationDescription_;
    std::string title_;
    std::string genre_;
    std::string description_;
    std::string comment_;
    std::string date_;
    std::string userIndex_;
    std::string parentalRating_;
    std::string creationTime_;
    std::string modificationTime_;
    std::string encryptionScheme_;
    std::string encryptionInfo_;
    std::string displayRules_;
    int previewPage_ = 0;
    int subtitlePage_ = 0;
    int encoding_ = 0;
    bool receivable_ = true;
    unsigned long long fileSize_ = 0;
    long long dateNumeric_ = 0;
    int attributes_ = 0;
    unsigned int maxPosition_ = 0;
    int volumeCorrection_ = 0;
    bool visible_ = true;
    bool selectable_ = true;
    unsigned int soundSelection_ = 0;
    std::string tunerUuid_;
    std::string artist_;
    std::string album_;
    std::string albumUuid_;
    std::string trackNum_;
    std::string year_;
    std::string bitrate_;
    unsigned int servicePid_ = 0;
    std::string updateTag_;
    std::string originalLcn_;
    std::string nitId_;
};

/// A TV service or an external input: an item of kind ITEM_TYPE_VIDEO.
class CHANNELLIST_ACCESS_EXPORT VideoItemInfo : public ItemInfo {
  public:
    /// The caption is not stripped.
    VideoItemInfo(std::string const& caption, std::string const& uuid);
    ~VideoItemInfo() override;
};

/// A radio service: an item of kind ITEM_TYPE_AUDIO.
class CHANNELLIST_ACCESS_EXPORT MusicItemInfo : public ItemInfo {
  public:
    /// The caption is not stripped.
    MusicItemInfo(std::string const& caption, std::string const& uuid);
    ~MusicItemInfo() override;
};

/// A list of services: an item of kind ITEM_TYPE_FOLDER.
class CHANNELLIST_ACCESS_EXPORT FolderItemInfo : public ItemInfo {
  public:
    /// The caption is not stripped.
    FolderItemInfo(std::string const& caption, std::string const& uuid);
    ~FolderItemInfo() override;
};

#endif
