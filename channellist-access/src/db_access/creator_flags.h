// What a creator's text says of its list.
#ifndef CHANNELLIST_DB_ACCESS_CREATOR_FLAGS_H
#define CHANNELLIST_DB_ACCESS_CREATOR_FLAGS_H

#include <string_view>

namespace channellist {

// As attr(), of any text.
unsigned int attributeWord(std::string_view creator, unsigned int attributes);

}  // namespace channellist

#endif
