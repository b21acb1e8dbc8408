// One raw service row as an item, and the item as the service snapshot.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_SERVICE_ITEM_ASSEMBLY_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_SERVICE_ITEM_ASSEMBLY_H

#include "dbservice_query_result/raw_service_row.h"

namespace channellist {

// dbaccess::fetchServiceItem of a complete row.
void fetchServiceItem(RawServiceRow const& row);

}  // namespace channellist

#endif
