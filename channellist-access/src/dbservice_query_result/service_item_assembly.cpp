#include "dbservice_query_result/service_item_assembly.h"

#include <channellist-access/db_access.h>
#include <channellist-access/item_info.h>

#include <stdexcept>

#include "dbservice_query_result/input_sources.h"
#include "dbservice_query_result/service_attributes.h"
#include "support/log.h"
#include "support/text.h"

ServiceSnapshot sv = {};

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::ItemAssembly;
constexpr std::int32_t kMediaTypeRadio = 2;

// The item of one service, for as long as its row: those fields of an ItemInfo that the snapshot
// keeps, their texts views of the row.
struct ServiceItem {
    ServiceItem(itemType itemKind, RawServiceRow const& row)
        : kind(itemKind),
          caption(row.text(ServiceColumn::ExternalName)),
          uuid(row.text(ServiceColumn::Uuid)) {}

    itemType kind;
    std::string_view caption;
    std::string_view uuid;
    std::string_view originalAncestor;
    std::string_view originalUuid;
    std::string_view locator;
    std::string_view userIndex;
    std::string_view tunerUuid;
    std::string_view originalLcn;
    std::string_view nitId;
    std::int32_t previewPage = 0;
    std::int32_t subtitlePage = 0;
    std::int32_t encoding = 0;
    unsigned int attributes = 0;
    std::int32_t servicePid = 0;
    bool visible = true;
    bool selectable = true;
};

// What the item of a list says of a service; a negative value leaves the service's own flag.
struct ItemOverrides {
    std::int32_t visible;
    std::int32_t selectable;
};

// A property that neither the snapshot nor a row shows: its column still has to hold a number.
void checkNumber(RawServiceRow const& row, ServiceColumn column) {
    static_cast<void>(row.number(column));
}

// Columns are converted in this order: a bad one is reported in its turn.
ServiceItem broadcastItem(RawServiceRow const& row, unsigned int attributes) {
    bool const isRadio = row.number(ServiceColumn::MediaType) == kMediaTypeRadio;
    ServiceItem item(isRadio ? ITEM_TYPE_AUDIO : ITEM_TYPE_VIDEO, row);
    item.visible = (attributes & kAttributeVisible) != 0;
    item.selectable = row.isSet(ServiceColumn::SSelectable);
    checkNumber(row, ServiceColumn::SoundSelection);
    item.previewPage = row.number(ServiceColumn::TtxPreviewPage);
    item.subtitlePage = row.number(ServiceColumn::TtxSubtitlePage);
    item.encoding = row.number(ServiceColumn::TtxCharEnc);
    item.tunerUuid = row.text(ServiceColumn::TunerUuid);
    item.locator = row.text(ServiceColumn::Uri);
    return item;
}

// An input takes its flags from the list alone and keeps the defaults of all broadcast properties,
// so their columns are not converted.
ServiceItem inputItem(RawServiceRow const& row, std::string_view locator) {
    ServiceItem item(ITEM_TYPE_VIDEO, row);
    item.locator = locator;
    return item;
}

// The last steps of every item, in this order.
void completeItem(ServiceItem& item, RawServiceRow const& row, unsigned int attributes,
                  ItemOverrides const& overrides) {
    item.locator = stripped(item.locator);
    item.attributes = attributes;
    if (row.isSet(ServiceColumn::Protected))
        item.attributes |= kAttributeProtected;
    checkNumber(row, ServiceColumn::VolumeCorrection);
    item.userIndex = row.text(ServiceColumn::ChannelNum);
    if (overrides.visible >= 0)
        item.visible = overrides.visible != 0;
    if (overrides.selectable >= 0)
        item.selectable = overrides.selectable != 0;
    item.originalAncestor = row.text(ServiceColumn::NetworkId);
    item.servicePid = row.number(ServiceColumn::Pid);
    item.originalLcn = row.text(ServiceColumn::Lcn);
    item.nitId = row.text(ServiceColumn::NITId);
}

// Every text of the snapshot with its source.
template <typename Use>
void forEachText(ServiceItem const& item, Use use) {
    use(sv.caption, item.caption);
    use(sv.locator, item.locator);
    use(sv.userIndex, item.userIndex);
    use(sv.uuid, item.uuid);
    use(sv.originalAncestor, item.originalAncestor);
    use(sv.originalUuid, item.originalUuid);
    use(sv.tunerUuid, item.tunerUuid);
    use(sv.originalLcn, item.originalLcn);
    use(sv.nitId, item.nitId);
}

// Room for all texts is made before the first of them changes the snapshot: what follows cannot
// fail, so the snapshot changes as a whole or not at all. Most texts find the room that earlier
// ones left.
void copyIntoSnapshot(ServiceItem const& item) {
    forEachText(
        item,
        [](std::string& text, std::string_view source) {
            if (text.capacity() < source.size())
                text.reserve(source.size());
        });
    forEachText(item, [](std::string& text, std::string_view source) { text = source; });
    sv.previewPage = item.previewPage;
    sv.subtitlePage = item.subtitlePage;
    sv.attributes = static_cast<int>(item.attributes);
    sv.encoding = item.encoding;
    sv.itemKind = static_cast<int>(item.kind);
    sv.servicePid = static_cast<unsigned int>(item.servicePid);
    sv.visible = item.visible;
    sv.selectable = item.selectable;
}

}  // namespace

void fetchServiceItem(RawServiceRow const& row) {
    unsigned int const attributes = storedAttributes(row);
    LOG_FORMAT_AT(CALL_SITE_OF("fetchServiceItem"), kLogModule, Notice,
                  "uuid:%s, channelNumber:%s,internalName:%s,attr:%u,encrypted:%s,isdelete:%s",
                  row.cText(ServiceColumn::Uuid), row.cText(ServiceColumn::ChannelNum),
                  row.cText(ServiceColumn::InternalName), attributes,
                  row.cText(ServiceColumn::Encrypted), row.cText(ServiceColumn::isDeleted));
    std::int32_t const visible = row.number(ServiceColumn::FIVisible);
    ItemOverrides const overrides = {visible, row.number(ServiceColumn::FISelectable)};

    std::optional<std::string_view> const input =
        inputSourceLocator(row.text(ServiceColumn::InternalName), row.text(ServiceColumn::Uuid));
    ServiceItem item = input ? inputItem(row, *input) : broadcastItem(row, attributes);
    completeItem(item, row, attributes, overrides);
    copyIntoSnapshot(item);
}

}  // namespace channellist

void dbaccess::fetchServiceItem(std::vector<std::string> const& columns) {
    if (columns.size() < channellist::kServiceColumnCount)
        throw std::out_of_range("raw service row");
    channellist::fetchServiceItem(channellist::RawServiceRow(columns));
}
