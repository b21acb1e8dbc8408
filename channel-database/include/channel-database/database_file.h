/// From the file of a channel list to the file of a channel database.
#pragma once

#include <channel-database/channels_conf.h>
#include <channel-database/import.h>

#include <string>

namespace channel_database {

/// Reads a channel list; lines that cannot be read are in its `rejected`. Throws
/// std::runtime_error when the file cannot be read.
ChannelsConf readChannelsConf(std::string const& path);

/// Makes a channel database. It is written beside the target and renamed at the end, so that a
/// failure (a list without channels, too), which throws std::runtime_error, leaves no half database
/// and an old one as it was. An existing file is replaced only with `replace`.
void makeDatabaseFile(ChannelsConf const& list, std::string const& path, bool replace,
                      ImportProgress const& progress = {});

}  // namespace channel_database
