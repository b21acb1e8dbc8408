/// Reads and writes channel lists in the text format of VDR, `channels.conf`.
///
/// One line is a channel of up to thirteen fields, separated by colons:
///
///     name,short name;provider:frequency:parameters:source:symbol rate:video pid:audio pids:
///     teletext pid:conditional access:service id:network id:transport stream id:radio id
///
/// or, with a colon in front, the name of the group of channels that follows; `:@n name` also
/// goes on counting the channels at n. A `|` in a name stands for a colon. Older lists leave out
/// the ids at the end, and even the teletext pid. An empty line is nothing, and a line that
/// begins with `#` and is no channel is a comment. Two comments of our own carry what the format
/// has no line for: a hidden channel, and an entry that is no DVB service. VDR starts with no line
/// that it does not know, so they look like groups:
///
///     :#channellist 5 hidden Jazz:394000:M256:C:6900:0:0:0:0:10:3:8:0
///     :#channellist 7 shown HDMI 1  -  id:7
#pragma once

#include <channel-database/builder.h>

#include <cstdint>
#include <istream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace channel_database {

/// Stands for an access system that is in use but not named.
constexpr int kUnknownAccess = 0xFFFF;

/// A line of a channel list that is a channel.
struct Channel {
    std::string name;
    std::string shortName;
    std::string provider;
    int frequency = 0;      ///< as given: MHz or kHz for satellites, else MHz, kHz or Hz
    char polarization = 0;  ///< 'H', 'V', 'L', 'R', or 0
    /// Value by letter: B bandwidth, C code rate, M modulation, P stream or PLP id, S 1 for the
    /// second generation (DVB-S2, -T2, -C2), and others that no database column needs.
    std::map<char, int> parameters;
    std::string source;  ///< "C", "T" or an orbital position, "S19.2E"
    int symbolRate = 0;
    std::string videoPid, audioPids, teletextPid;  ///< as given
    std::vector<int> conditionalAccess;            ///< without the 0 that says free to air
    int serviceId = 0;
    int networkId = 0;
    int transportStreamId = 0;
    int radioId = 0;

    int number = 0;  ///< position in the whole list
    int mark = 0;    ///< the n of the `:@n` in front of it, or of a hidden one's comment; 0 without
    bool hidden = false;
    std::optional<bool> highDefinition;  ///< where more is known than the name says
    std::optional<std::uint32_t> place;  ///< the namespace of an Enigma2 receiver
    bool isReference = false;  ///< names a service by its ids: without frequency and parameters
    int group = -1;            ///< index in ChannelsConf::groups; -1 in front of the first
    int line = 0;              ///< counted from 1

    Delivery delivery() const;
    /// In kHz: the frequency times 1000 until it is no smaller than a satellite's in kHz, any
    /// other's in Hz.
    int frequencyInKHz() const;
    /// Tenths of a degree, west negative; 0 for cable and terrestrial channels.
    int orbitalPosition() const;
    bool isRadio() const;
    /// From `highDefinition`, else where the name has the word: "ZDF HD", "Ultra UHD", not "AHD".
    bool isHighDefinition() const;
    /// What makes it one channel for VDR, which drops all but the first of each:
    /// "S19.2E-1-1019-10301".
    std::string id() const;
    /// Access numbers below 16 only name the receiving device.
    bool isEncrypted() const;
    /// The parameter's value; 0 when the line leaves it out or to the receiver.
    int parameter(char letter) const;
    /// The parameter field as formatChannel() writes it: "HC34M2S0".
    std::string parameterText() const;
};

/// Why a line is no channel.
struct LineError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A line that could not be read.
struct RejectedLine {
    int line;
    std::string reason;     ///< the same for all lines that are alike
    std::string text = {};  ///< what the line is about
    std::string file = {};  ///< within a folder or an archive
};

/// An entry of a group that is no channel: the text of its comment.
struct OtherEntry {
    int group;
    int line;
    std::string text;  ///< "7 shown HDMI 1  -  id:7"
};

/// A whole channel list.
struct ChannelsConf {
    std::vector<Channel> channels;
    std::vector<OtherEntry> others;
    std::vector<std::string> groups;
    std::vector<RejectedLine> rejected;
    std::vector<std::string> notes;  ///< what a person should know of the whole
};

/// Reads one channel line; throws LineError.
Channel parseChannel(std::string const& line);
/// Whether a line is a group or has as many fields as a channel, or the text says nothing at all.
bool isChannelsConf(std::string_view text);
/// Reads a whole list. Lines that are not UTF-8 are taken as Latin-1.
ChannelsConf parseChannelsConf(std::istream& text);
/// The channel's line, with all thirteen fields, none of them empty. A colon in a name becomes a
/// bar, a semicolon a comma.
std::string formatChannel(Channel const& channel);
/// The line that begins a group.
std::string formatGroup(std::string const& name);
/// The comment for a hidden channel, or with a text of its own for an entry that is no channel.
std::string formatHidden(Channel const& channel, int number);
std::string formatOther(std::string const& text);

}  // namespace channel_database
