// The channel files of libdvbv5.
#include <channel-database/dvbv5.h>
#include <channel-database/utf8.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include "free_numbers.h"
#include "line_text.h"

namespace channel_database {
namespace {

constexpr char kSourceComment[] = "# SOURCE";
constexpr int kLargestFrequency = 2000000000;

struct Word {
    int value;
    char const* word;
};
constexpr Word kModulations[] = {{2, "QPSK"},     {5, "PSK/8"},     {6, "APSK/16"},
                                 {7, "APSK/32"},  {16, "QAM/16"},   {32, "QAM/32"},
                                 {64, "QAM/64"},  {128, "QAM/128"}, {256, "QAM/256"},
                                 {0, "QAM/AUTO"}, {10, "VSB/8"},    {11, "VSB/16"}};
constexpr Word kCodeRates[] = {{0, "AUTO"}, {12, "1/2"}, {23, "2/3"},  {34, "3/4"},
                               {45, "4/5"}, {56, "5/6"}, {67, "6/7"},  {78, "7/8"},
                               {89, "8/9"}, {35, "3/5"}, {910, "9/10"}};
constexpr Word kPolarizations[] = {
    {'H', "HORIZONTAL"}, {'V', "VERTICAL"}, {'L', "LEFT"}, {'R', "RIGHT"}};

struct System {
    char const* word;
    char source;
    int generation;
};
constexpr System kSystems[] = {{"DVBS", 'S', 0},  {"DVBS2", 'S', 1},        {"DVBT", 'T', 0},
                               {"DVBT2", 'T', 1}, {"DVBC/ANNEX_A", 'C', 0}, {"DVBC", 'C', 0}};

template <std::size_t Count>
int valueOf(Word const (&words)[Count], std::string_view word) {
    for (Word const& each : words)
        if (word == each.word)
            return each.value;
    return 0;
}

template <std::size_t Count>
char const* wordOf(Word const (&words)[Count], int value, char const* other) {
    for (Word const& each : words)
        if (value == each.value)
            return each.word;
    return other;
}

using Section = std::map<std::string, std::string>;

std::string textOf(Section const& section, char const* key) {
    auto const found = section.find(key);
    return found == section.end() ? std::string() : found->second;
}

/// The first number of a value, which may be a list of pids; 0 where there is none.
int numberOf(Section const& section, char const* key) {
    std::string const text = textOf(section, key);
    std::string_view rest = text;
    return leadingNumber(rest).value_or(0);
}

void setParameters(Section const& section, Channel& channel) {
    std::pair<char, int> const parameters[] = {
        {'M', valueOf(kModulations, textOf(section, "MODULATION"))},
        {'C', valueOf(kCodeRates,
                      textOf(section, channel.source == "T" ? "CODE_RATE_HP" : "INNER_FEC"))},
        {'B', numberOf(section, "BANDWIDTH_HZ") / 1000000},
        {'P', channel.source == "T" ? numberOf(section, "STREAM_ID") : 0},
        {'I', textOf(section, "INVERSION") == "ON" ? 1 : 0}};
    for (auto const& [letter, value] : parameters)
        if (value != 0)
            channel.parameters[letter] = value;
}

/// Why the section is no channel, or the channel.
std::pair<Channel, std::string> channelOf(std::string const& name, Section const& section) {
    Channel channel;
    std::string const system = textOf(section, "DELIVERY_SYSTEM");
    auto const* const known = std::find_if(std::begin(kSystems), std::end(kSystems),
                                           [&](System const& each) { return system == each.word; });
    if (known == std::end(kSystems))
        return {channel, "no delivery system that a set receives"};
    channel.name = name;
    std::string const given = textOf(section, kSourceComment);
    channel.source = known->source != 'S' ? std::string(1, known->source)
                     : given.empty()      ? kUnknownSatellite
                                          : given;
    if (known->source != 'C')
        channel.parameters['S'] = known->generation;
    channel.polarization =
        static_cast<char>(valueOf(kPolarizations, textOf(section, "POLARIZATION")));
    channel.frequency = numberOf(section, "FREQUENCY");
    channel.symbolRate = numberOf(section, "SYMBOL_RATE") / 1000;
    channel.serviceId = numberOf(section, "SERVICE_ID") & 0xFFFF;
    channel.networkId = numberOf(section, "NETWORK_ID") & 0xFFFF;
    channel.transportStreamId = numberOf(section, "TRANSPORT_ID") & 0xFFFF;
    setParameters(section, channel);
    int const video = numberOf(section, "VIDEO_PID");
    bool const isRadio = video == 0 && !textOf(section, "AUDIO_PID").empty();
    channel.videoPid = isRadio ? "0" : std::to_string(video != 0 ? video : 8191);
    channel.audioPids = channel.teletextPid = "0";
    channel.mark = numberOf(section, "VCHANNEL");
    bool const isReceived = channel.frequency > 0 && channel.frequency <= kLargestFrequency;
    return {channel, isReceived ? "" : "no frequency that a set receives"};
}

/// "S19.2E", as channel lines have it.
bool isSatellite(std::string const& source) {
    if (source.find(':') != std::string::npos)
        return false;
    try {
        parseChannel("A:1:S0:" + source + ":1:0:0:0:0:1:1:1:0");
        return source[0] == 'S';
    } catch (LineError const&) {
        return false;
    }
}

class Dvbv5Reader {
  public:
    void read(std::string_view line, int number) {
        auto const equals = line.find('=');
        if (line.substr(0, 1) == "[" && line.back() == ']') {
            finish();
            name_ = std::string(line.substr(1, line.size() - 2));
            line_ = number;
        } else if (equals != std::string_view::npos) {
            bool const isSource = line.rfind(kSourceComment, 0) == 0;
            std::string const value(trimmed(line.substr(equals + 1)));
            if (isSource && isSatellite(value))
                section_[kSourceComment] = value;  // a key that no other line has
            else if (line[0] != '#')
                section_[std::string(trimmed(line.substr(0, equals)))] = value;
        }
    }

    void finish() {
        Section const section = std::exchange(section_, Section());
        if (line_ == 0 || name_ == "CHANNEL")  // a transponder alone, as scanners are given
            return;
        auto [channel, reason] = channelOf(name_, section);
        if (!reason.empty()) {
            list.rejected.push_back({line_, reason, name_});
            return;
        }
        unknown_ += channel.source == kUnknownSatellite ? 1 : 0;
        channel.line = line_;
        list.channels.push_back(std::move(channel));
    }

    void note() {
        if (unknown_ != 0)
            list.notes.push_back(std::to_string(unknown_) +
                                 " channels are of a satellite that the file does not name");
    }

    ChannelsConf list;

  private:
    std::string name_;
    Section section_;
    int line_ = 0;
    int unknown_ = 0;
};

std::string line(char const* key, std::string const& value) {
    return "\t" + std::string(key) + " = " + value + "\n";
}

std::string satelliteLines(Channel const& channel) {
    return line("POLARIZATION", wordOf(kPolarizations, channel.polarization, "HORIZONTAL")) +
           "# SOURCE = " + channel.source + "\n";
}

std::string nameIn(std::string name) {
    std::replace(name.begin(), name.end(), ']', ')');
    std::replace(name.begin(), name.end(), '[', '(');
    return name;
}

}  // namespace

bool isDvbv5(std::string_view text) {
    auto const first = text.find('[');
    return first != std::string_view::npos && (first == 0 || text[first - 1] == '\n') &&
           text.find("DELIVERY_SYSTEM", first) != std::string_view::npos;
}

ChannelsConf parseDvbv5(std::istream& text) {
    Dvbv5Reader reader;
    int number = 0;
    for (std::string line; std::getline(text, line);) {
        std::string const utf8 = isUtf8(line) ? line : latin1ToUtf8(line);
        if (auto const content = trimmed(utf8); !content.empty())
            reader.read(content, number + 1);
        ++number;
    }
    reader.finish();
    reader.note();
    giveNumbers(reader.list.channels);
    return std::move(reader.list);
}

std::string formatDvbv5(Channel const& channel) {
    bool const isSatellite = channel.source[0] == 'S', isCable = channel.source[0] == 'C';
    std::int64_t const kHz = channel.frequencyInKHz();
    std::string const system = isSatellite ? "DVBS" : isCable ? "DVBC/ANNEX_A" : "DVBT";
    std::string text = "[" + nameIn(channel.name) + "]\n";
    text += line("VCHANNEL", std::to_string(channel.number)) +
            line("SERVICE_ID", std::to_string(channel.serviceId)) +
            line("NETWORK_ID", std::to_string(channel.networkId)) +
            line("TRANSPORT_ID", std::to_string(channel.transportStreamId));
    text += channel.isRadio() ? line("AUDIO_PID", "8191") : line("VIDEO_PID", "8191");
    text += line("FREQUENCY", std::to_string(isSatellite ? kHz : kHz * 1000)) +
            line("MODULATION", wordOf(kModulations, channel.parameter('M'), "QAM/AUTO"));
    char const* const codeRate = wordOf(kCodeRates, channel.parameter('C'), "AUTO");
    if (channel.source[0] == 'T') {
        text += line("BANDWIDTH_HZ", std::to_string(channel.parameter('B') * 1000000)) +
                line("CODE_RATE_HP", codeRate) + line("CODE_RATE_LP", "AUTO") +
                line("GUARD_INTERVAL", "AUTO") + line("TRANSMISSION_MODE", "AUTO") +
                line("HIERARCHY", "NONE");
        if (channel.delivery() == Delivery::DvbT2)
            text += line("STREAM_ID", std::to_string(channel.parameter('P')));
    } else {
        text += line("SYMBOL_RATE", std::to_string(std::int64_t{channel.symbolRate} * 1000)) +
                line("INNER_FEC", codeRate);
    }
    text += line("INVERSION", channel.parameter('I') == 1 ? "ON" : "AUTO");
    if (isSatellite)
        text += satelliteLines(channel);
    if (isSatellite && channel.parameter('S') == 1)  // without these it is converted to nothing
        text += line("ROLLOFF", "AUTO") + line("PILOT", "AUTO");
    return text + line("DELIVERY_SYSTEM", system + (channel.parameter('S') == 1 ? "2" : "")) + "\n";
}

}  // namespace channel_database
