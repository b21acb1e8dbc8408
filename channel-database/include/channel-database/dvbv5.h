/// Channel files of libdvbv5, whose scanners write a section for each channel:
///
///     [Das Erste HD]
///             SERVICE_ID = 10301
///             TRANSPORT_ID = 1019
///             NETWORK_ID = 1
///             VIDEO_PID = 5101
///             FREQUENCY = 11493750
///             DELIVERY_SYSTEM = DVBS2
///
/// Frequencies are in kHz for satellites, else in Hz; VCHANNEL is the channel's number. The format
/// names no satellite: a comment of our own, `# SOURCE = S19.2E`, does.
#pragma once

#include <channel-database/channels_conf.h>

#include <istream>
#include <string>
#include <string_view>

namespace channel_database {

bool isDvbv5(std::string_view text);
/// A section without an own name or frequency, or of another delivery system than DVB, is rejected.
/// Of a satellite that the file does not name the source is S0E, which a note says.
ChannelsConf parseDvbv5(std::istream& text);
/// The section of a DVB channel. DVB-C2 the library does not know.
std::string formatDvbv5(Channel const& channel);

}  // namespace channel_database
