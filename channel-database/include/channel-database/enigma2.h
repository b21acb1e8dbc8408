/// Channel lists of Enigma2 receivers.
///
/// `lamedb` holds every transponder and service of such a receiver, in versions 3 to 5 of its
/// format; a `userbouquet.NAME.tv` or `.radio` names services of it by their ids, and `bouquets.tv`
/// the bouquets in their order.
#pragma once

#include <channel-database/channels_conf.h>

#include <cstdint>
#include <istream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace channel_database {

bool isLamedb(std::string_view beginning);
/// Every TV and radio service, in the file's order; others are in `rejected`, each with its line. A
/// frequency below 3.4 GHz is no satellite's: a converter has moved it one GHz up, from a cable
/// (positions 0 and 0.1 degrees) or an aerial (0.2), and it is moved back.
ChannelsConf parseLamedb(std::istream& text);

bool isBouquet(std::string_view beginning);
/// One group with the bouquet's services: channels of the ids alone (Channel::isReference).
ChannelsConf parseBouquet(std::istream& text);

/// The services of the folder's lamedb, then a group for each bouquet of its bouquets.tv and
/// bouquets.radio. Channels of a group have what lamedb says of them, or are references. Throws
/// std::runtime_error when the folder holds neither lamedb nor bouquets.
ChannelsConf readEnigma2Folder(std::string const& folder);

/// A whole lamedb, version 4, with the transponders in the order in which the channels name them.
/// What it has no place for is left to the receiver (pids, hierarchy); DVB-C2 it does not know, so
/// such channels are not in it.
std::string formatLamedb(std::vector<Channel> const& channels);

/// The namespaces of a receiver's own lamedb, by which its bouquets name services.
class Namespaces {
  public:
    explicit Namespaces(std::vector<Channel> const& lamedb);
    /// Of the service with these ids from this source, else of a transponder with these ids; where
    /// several have them, of that with the nearest frequency. Nothing without one.
    std::optional<std::uint32_t> of(Channel const& channel) const;

  private:
    struct Carrier {
        int kHz;
        std::uint32_t place;
    };
    std::multimap<std::string, Carrier> services_, transponders_;
};

/// The line of a bouquet for a DVB channel, and its first line.
std::string formatBouquetEntry(Channel const& channel);
std::string formatBouquetName(std::string const& name);

}  // namespace channel_database
