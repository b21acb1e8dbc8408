// The icon of a list.
#ifndef CHANNELLIST_DB_ACCESS_FOLDER_ICON_H
#define CHANNELLIST_DB_ACCESS_FOLDER_ICON_H

#include <string>

namespace channellist {

// The icon's file name by the list's creator; empty for a list without one.
std::string folderIcon(std::string const& creator);

}  // namespace channellist

#endif
