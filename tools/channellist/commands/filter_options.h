// The options by which commands choose services.
#pragma once

#include "command_line/command_line.h"
#include "services/service_filter.h"

namespace tool {

void addFilterOptions(Command& command, ServiceFilter& filter);

}  // namespace tool
