// FAV lists out of a channel list, found again in a database of another scan.
#pragma once

#include <channel-database/channels_conf.h>

#include <string>
#include <vector>

#include "database/list_naming.h"
#include "edit/list_content.h"

namespace tool {

struct Favourites {
    List list;
    std::vector<Entry> entries;         // the list's complete new content
    std::vector<std::string> notFound;  // channel lines without a service
};

// Each group, or everything for the list `listName` when it is not empty. The services are those
// of the list of all services with the channel's DVB triplet; delivery, satellite, frequency and
// name choose among several. Throws Failure when a list is none of FAV1 to FAV4.
std::vector<Favourites> findFavourites(channel_database::ChannelsConf const& channels,
                                       std::string const& listName);

}  // namespace tool
