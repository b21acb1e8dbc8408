#include "dbservice_query_result/input_sources.h"

#include <string_view>

namespace channellist {

namespace {

enum class Names { Input, Service };

struct InputSource {
    Names what;  // `name` is an internal name, or the uuid of the service
    std::string_view name;
    std::string_view locator;
};

// Tested in this order; comparisons are exact.
constexpr InputSource kInputSources[] = {
    {Names::Input, "hdmi1", "rec://plain/hdmi?id=0"},
    {Names::Input, "hdmi2", "rec://plain/hdmi?id=1"},
    {Names::Input, "hdmi3", "rec://plain/hdmi?id=2"},
    {Names::Input, "hdmi4", "rec://plain/hdmi?id=3"},
    {Names::Input, "AV1", "rec://plain/scart?id=0"},
    {Names::Service, "AVS", "rec://plain/avs"},
    {Names::Input, "PC IN", "rec://plain/vga"},
    {Names::Input, "ANALOG", "rec://plain/analog?frequency=591250&frontend=1&colstd=0&brdstd=0"},
    {Names::Input, "SPDIF IN", "rec://plain/spdifin"},
    {Names::Input, "SCART AV", "rec://plain/scart?id=0"},
    {Names::Input, "COMPONENT", "rec://plain/component"},
};

}  // namespace

std::optional<std::string_view> inputSourceLocator(std::string_view internalName,
                                                   std::string_view uuid) {
    for (InputSource const& source : kInputSources)
        if ((source.what == Names::Service ? uuid : internalName) == source.name)
            return source.locator;
    return std::nullopt;
}

}  // namespace channellist
