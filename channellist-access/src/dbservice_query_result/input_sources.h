// External inputs (HDMI, SCART, VGA and the like) that the list shows as services.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_INPUT_SOURCES_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_INPUT_SOURCES_H

#include <optional>
#include <string_view>

namespace channellist {

// The fixed tuning URI of the input with this internal name or service uuid; nothing for a
// broadcast service.
std::optional<std::string_view> inputSourceLocator(std::string_view internalName,
                                                   std::string_view uuid);

}  // namespace channellist

#endif
