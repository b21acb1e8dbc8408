/// From a channel database back to a channel list.
#pragma once

#include <channel-database/channels_conf.h>

#include <optional>
#include <string>
#include <vector>

namespace channel_database {

/// What a database knows of a service.
struct StoredService {
    std::string name;
    std::string shortName;
    std::string uri;  ///< its tuning URI
    bool radio = false;
    bool encrypted = false;
    bool highDefinition = false;
};

/// The channel of a DVB service; nothing for analogue and IP services and for inputs, which have
/// no line in a channel list. What a database does not keep is written so that it reads as what it
/// is: 8191, no pid, for the video of a TV service, with the stream type of H.264 where it is of
/// high definition; FFFF for the access of an encrypted one. The source of a satellite that only
/// the set knows by its number is S0E. The frequency is in kHz.
std::optional<Channel> channelOf(StoredService const& service);

/// The channel of an IP service, which has a name, a kind and an address; nothing for others.
std::optional<Channel> streamOf(StoredService const& service);

/// "19.2°E" of the number that a database has for a satellite; "" of one that tells no position.
std::string satelliteName(int number);

/// What the channel does not carry of the service, each in a few words.
std::vector<std::string> lossesOf(StoredService const& service);

/// The same with a satellite's frequency in MHz, as VDR counts.
Channel inVdrUnits(Channel channel);

}  // namespace channel_database
