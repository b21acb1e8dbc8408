/// Reads a channel list of any format that this library knows.
#pragma once

#include <channel-database/channels_conf.h>

#include <string>

namespace channel_database {

/// The list of a file, "-" for standard input, or of a folder or archive of Enigma2; its format is
/// told from the content: lamedb or bouquet of Enigma2, M3U, libdvbv5's, else VDR's. One of more
/// than 64 MiB is none. Throws std::runtime_error when it cannot be read, and with one sentence for
/// a file in none of these formats.
ChannelsConf readChannelList(std::string const& path);

}  // namespace channel_database
