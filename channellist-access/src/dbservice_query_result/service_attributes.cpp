#include "dbservice_query_result/service_attributes.h"

namespace channellist {

namespace {

constexpr std::int32_t kAnalogue = 1;  // a value of Type

}  // namespace

unsigned int storedAttributes(RawServiceRow const& row) {
    unsigned int word = 0;
    // Columns are converted in this order: a bad one is reported in its turn.
    auto const setWhen = [&word](bool condition, unsigned int bit) { word |= condition ? bit : 0; };
    setWhen(row.number(ServiceColumn::Type) == kAnalogue, 0x4000000);
    setWhen(row.isSet(ServiceColumn::ParentalLock), kAttributeLocked);
    setWhen(row.isSet(ServiceColumn::EpgService), 0x8);
    setWhen(!row.isSet(ServiceColumn::EngineAutoStart), 0x40);
    setWhen(row.isSet(ServiceColumn::GamingMode), 0x20);
    setWhen(row.isSet(ServiceColumn::Hdtv), kAttributeHdtv);
    setWhen(row.isSet(ServiceColumn::Encrypted), kAttributeEncrypted);
    setWhen(!row.isSet(ServiceColumn::isDeleted), 0x200);
    setWhen(row.isSet(ServiceColumn::FavTag), 0x200000);
    setWhen(row.isSet(ServiceColumn::FavTag2), 0x800000);
    setWhen(row.isSet(ServiceColumn::FavTag3), 0x1000000);
    setWhen(row.isSet(ServiceColumn::FavTag4), 0x2000000);
    setWhen(row.isSet(ServiceColumn::HbbTvEnable), 0x400000);
    setWhen(row.isSet(ServiceColumn::SVisible), kAttributeVisible);
    return word;
}

}  // namespace channellist
