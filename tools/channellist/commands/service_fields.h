// What commands tell of a service.
#pragma once

#include <channellist-access/result_rows.h>

#include "output/fields.h"

namespace tool {

// Of rows of all columns, while a database is open.
std::vector<Field<ResultRow>> serviceFields();

}  // namespace tool
