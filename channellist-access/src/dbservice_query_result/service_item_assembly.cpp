// Turns one raw service row into an item and the item into the service snapshot.
#include <channellist-access/db_access.h>
#include <channellist-access/item_info.h>

#include "dbservice_query_result/input_sources.h"
#include "dbservice_query_result/raw_service_row.h"
#include "dbservice_query_result/service_attributes.h"
#include "support/log.h"

ServiceSnapshot sv = {};

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::ItemAssembly;

std::string const kVideoBroadcast = "object.item.videoItem.videoBroadcast";
std::string const kAudioBroadcast = "object.item.audioItem.audioBroadcast";
constexpr std::int32_t kMediaTypeRadio = 2;

// What the item of a list says of a service; a negative value leaves the service's own flag.
struct ItemOverrides {
    std::int32_t visible;
    std::int32_t selectable;
};

// The texts of a snapshot and the getters of the item's fields that they hold.
struct SnapshotText {
    std::string ServiceSnapshot::*text;
    std::string const& (ItemInfo::*field)() const;
};

constexpr SnapshotText kSnapshotTexts[] = {
    {&ServiceSnapshot::caption, &ItemInfo::getCaption},
    {&ServiceSnapshot::locator, &ItemInfo::getLocator},
    {&ServiceSnapshot::userIndex, &ItemInfo::getUserIndex},
    {&ServiceSnapshot::uuid, &ItemInfo::getUUID},
    {&ServiceSnapshot::originalAncestor, &ItemInfo::getOriginalAncestor},
    {&ServiceSnapshot::originalUuid, &ItemInfo::getOriginalUuid},
    {&ServiceSnapshot::tunerUuid, &ItemInfo::getTunerUUID},
    {&ServiceSnapshot::originalLcn, &ItemInfo::getOriginalLcn},
    {&ServiceSnapshot::nitId, &ItemInfo::getNitId},
};

// Room for all texts is made first: what follows it cannot fail, so the snapshot changes as a whole
// or not at all. Most services find the room that an earlier one has left.
void copyIntoSnapshot(ItemInfo const& item) {
    for (SnapshotText const& rule : kSnapshotTexts)
        (sv.*rule.text).reserve((item.*rule.field)().size());
    for (SnapshotText const& rule : kSnapshotTexts)
        sv.*rule.text = (item.*rule.field)();
    sv.previewPage = item.getPreviewPage();
    sv.subtitlePage = item.getSubtitlePage();
    sv.attributes = item.getAttributes();
    sv.encoding = item.getEncoding();
    sv.itemKind = static_cast<int>(item.getItemType());
    sv.servicePid = item.getServicePid();
    sv.visible = item.isVisible();
    sv.selectable = item.isSelectable();
}

void setBroadcastProperties(ItemInfo& item, RawServiceRow const& row, std::string const& subType) {
    item.setItemSubType(subType);
    item.setVisible(row.isSet(ServiceColumn::SVisible));
    item.setSelectable(row.isSet(ServiceColumn::SSelectable));
    item.setSoundSelection(static_cast<unsigned int>(row.number(ServiceColumn::SoundSelection)));
    item.setPreviewPage(row.number(ServiceColumn::TtxPreviewPage));
    item.setSubtitlePage(row.number(ServiceColumn::TtxSubtitlePage));
    item.setEncoding(row.number(ServiceColumn::TtxCharEnc));
    item.setTunerUUID(row.text(ServiceColumn::TunerUuid));
}

// The last steps of every item. The snapshot changes only once all of them have succeeded.
void completeItem(ItemInfo& item, RawServiceRow const& row, std::string const& locator,
                  unsigned int attributes, ItemOverrides const& overrides) {
    item.setItemLocator(locator);
    if (row.isSet(ServiceColumn::Protected))
        attributes |= kAttributeProtected;
    item.setAttributes(static_cast<int>(attributes));
    item.setVolumeCorrection(row.number(ServiceColumn::VolumeCorrection));
    item.setUserIndex(row.text(ServiceColumn::ChannelNum));
    item.setTitle(row.text(ServiceColumn::ExternalName));
    if (overrides.visible >= 0)
        item.setVisible(overrides.visible != 0);
    if (overrides.selectable >= 0)
        item.setSelectable(overrides.selectable != 0);
    item.setOriginalAncestor(row.text(ServiceColumn::NetworkId));
    item.setServicePid(static_cast<unsigned int>(row.number(ServiceColumn::Pid)));
    item.setOriginalLcn(row.text(ServiceColumn::Lcn));
    item.setNitId(row.text(ServiceColumn::NITId));
    copyIntoSnapshot(item);
}

template <typename Item>
void assembleBroadcast(RawServiceRow const& row, std::string const& subType,
                       unsigned int attributes, ItemOverrides const& overrides) {
    Item item(row.text(ServiceColumn::ExternalName), row.text(ServiceColumn::Uuid));
    setBroadcastProperties(item, row, subType);
    completeItem(item, row, row.text(ServiceColumn::Uri), attributes, overrides);
}

// An input takes its flags from the list alone and keeps the defaults of all broadcast properties,
// so their columns are not converted.
void assembleInputSource(RawServiceRow const& row, std::string const& locator,
                         unsigned int attributes, ItemOverrides const& overrides) {
    VideoItemInfo item(row.text(ServiceColumn::ExternalName), row.text(ServiceColumn::Uuid));
    item.setItemSubType(kVideoBroadcast);
    completeItem(item, row, locator, attributes, overrides);
}

}  // namespace
}  // namespace channellist

using namespace channellist;

void dbaccess::fetchServiceItem(std::vector<std::string> const& columns) {
    RawServiceRow const row(columns);
    unsigned int const attributes = storedAttributes(row);
    LOG_FORMAT(Notice, "uuid:%s, channelNumber:%s,internalName:%s,attr:%u,encrypted:%s,isdelete:%s",
               row.text(ServiceColumn::Uuid).c_str(), row.text(ServiceColumn::ChannelNum).c_str(),
               row.text(ServiceColumn::InternalName).c_str(), attributes,
               row.text(ServiceColumn::Encrypted).c_str(),
               row.text(ServiceColumn::isDeleted).c_str());
    std::int32_t const visible = row.number(ServiceColumn::FIVisible);
    ItemOverrides const overrides = {visible, row.number(ServiceColumn::FISelectable)};

    std::optional<std::string> const input =
        inputSourceLocator(row.text(ServiceColumn::InternalName), row.text(ServiceColumn::Uuid));
    if (input)
        assembleInputSource(row, *input, attributes, overrides);
    else if (row.number(ServiceColumn::MediaType) == kMediaTypeRadio)
        assembleBroadcast<MusicItemInfo>(row, kAudioBroadcast, attributes, overrides);
    else
        assembleBroadcast<VideoItemInfo>(row, kVideoBroadcast, attributes, overrides);
}
