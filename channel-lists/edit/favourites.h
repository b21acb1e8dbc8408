// FAV lists out of a channel list, found again in a database of any scan.
#pragma once

#include <channel-database/channels_conf.h>

#include <string>
#include <vector>

#include "edit/write_list.h"

namespace channel_lists {

struct Favourites {
    ListEdit edit;                      // to the list's complete new content
    std::vector<std::string> notes;     // on channels that were found by name alone
    std::vector<std::string> notFound;  // channel lines without a service
};

// The lists that a file's groups name, or everything for the list `listName` when it is not empty.
// Channels count from 1; ":@N" sets their number, in a list of several groups only onwards. Numbers
// that OTT channels or other entries hold are left to them. Throws Failure when the file has none
// of the groups FAV1 to FAV4, and when a list cannot be read.
std::vector<Favourites> findFavourites(channel_database::ChannelsConf const& channels,
                                       std::string const& listName);

}  // namespace channel_lists
