#ifndef CHANNELLIST_SUPPORT_TEXT_H
#define CHANNELLIST_SUPPORT_TEXT_H

#include <string_view>

namespace channellist {

// Byte-wise; a text begins with itself.
inline bool startsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace channellist

#endif
