// The stored attribute word of a service.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_SERVICE_ATTRIBUTES_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_SERVICE_ATTRIBUTES_H

#include "dbservice_query_result/raw_service_row.h"

namespace channellist {

inline constexpr unsigned int kAttributeEncrypted = 0x1;
inline constexpr unsigned int kAttributeHdtv = 0x4;
inline constexpr unsigned int kAttributeLocked = 0x10;
inline constexpr unsigned int kAttributeFreeToView = 0x20000;  // neither encrypted nor locked
inline constexpr unsigned int kAttributeProtected = 0x40000;
inline constexpr unsigned int kAttributeVisible = 0x10000000;  // the service's own flag

// The word without kAttributeProtected, which the completion of the item adds, and without what
// only the result row shows. Throws as RawServiceRow::number does.
unsigned int storedAttributes(RawServiceRow const& row);

}  // namespace channellist

#endif
