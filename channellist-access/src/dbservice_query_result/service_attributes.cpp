#include "dbservice_query_result/service_attributes.h"

namespace channellist {

namespace {

enum class SetWhen { NotZero, Zero, One };

struct AttributeBit {
    ServiceColumn column;
    SetWhen when;
    unsigned int bit;
};

// In the order in which the columns are converted: the first bad one is the one reported.
constexpr AttributeBit kAttributeBits[] = {
    {ServiceColumn::Type, SetWhen::One, 0x4000000},  // analogue
    {ServiceColumn::ParentalLock, SetWhen::NotZero, kAttributeLocked},
    {ServiceColumn::EpgService, SetWhen::NotZero, 0x8},
    {ServiceColumn::EngineAutoStart, SetWhen::Zero, 0x40},
    {ServiceColumn::GamingMode, SetWhen::NotZero, 0x20},
    {ServiceColumn::Hdtv, SetWhen::NotZero, kAttributeHdtv},
    {ServiceColumn::Encrypted, SetWhen::NotZero, kAttributeEncrypted},
    {ServiceColumn::isDeleted, SetWhen::Zero, 0x200},
    {ServiceColumn::FavTag, SetWhen::NotZero, 0x200000},
    {ServiceColumn::FavTag2, SetWhen::NotZero, 0x800000},
    {ServiceColumn::FavTag3, SetWhen::NotZero, 0x1000000},
    {ServiceColumn::FavTag4, SetWhen::NotZero, 0x2000000},
    {ServiceColumn::HbbTvEnable, SetWhen::NotZero, 0x400000},
    {ServiceColumn::SVisible, SetWhen::NotZero, 0x10000000},
};

bool applies(SetWhen when, std::int32_t value) {
    switch (when) {
        case SetWhen::NotZero:
            return value != 0;
        case SetWhen::Zero:
            return value == 0;
        case SetWhen::One:
            return value == 1;
    }
    return false;
}

}  // namespace

unsigned int storedAttributes(RawServiceRow const& row) {
    unsigned int word = 0;
    for (AttributeBit const& rule : kAttributeBits)
        if (applies(rule.when, row.number(rule.column)))
            word |= rule.bit;
    return word;
}

}  // namespace channellist
