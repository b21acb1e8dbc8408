#include "db_access/folder_icon.h"

#include <string_view>

#include "support/text.h"

namespace channellist {

namespace {

struct DeliveryIcon {
    std::string_view creator;  // its beginning
    std::string_view icon;
};

// The first row that fits counts; the exact "servicelist://tamun.analog" is tested before.
constexpr DeliveryIcon kDeliveryIcons[] = {
    {"servicelist://tamun.dvb.65536", ""},
    {"servicelist://tamun.dvbt.10", "FreeView-T.png"},
    {"servicelist://tamun.dvbt", "DVB-T.png"},
    {"servicelist://tamun.dvbc.10", "FreeView-C.png"},
    {"servicelist://tamun.dvbc", "DVB-C.png"},
    {"servicelist://tamun.dvbip", "DVB-IPTV.png"},
    {"servicelist:", "DVB-S.png"},
};

constexpr std::string_view kMagazines[] = {"User.tv.magazine$", "User.radio.magazine$"};

// The name of a magazine stands behind "$" and ends before the first "." after its first character.
std::string magazineIcon(std::string_view name) {
    name = name.substr(0, name.find('.', 1));
    return name.empty() ? std::string() : "icons/" + std::string(name) + ".png";
}

}  // namespace

std::string folderIcon(std::string const& creator) {
    if (creator == "servicelist://tamun.analog")
        return std::string();
    for (DeliveryIcon const& rule : kDeliveryIcons)
        if (startsWith(creator, rule.creator))
            return std::string(rule.icon);
    for (std::string_view const magazine : kMagazines)
        if (startsWith(creator, magazine))
            return magazineIcon(std::string_view(creator).substr(magazine.size()));
    return std::string();
}

}  // namespace channellist
