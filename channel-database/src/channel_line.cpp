// One channel line: its fields both ways, and what they mean.
#include <channel-database/channels_conf.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "line_text.h"

namespace channel_database {
namespace {

constexpr int kAutomatic = 999;
constexpr int kAutomaticQam = 998;
constexpr char const* kNoParameters = "M999";
constexpr std::string_view kPolarizations = "HVLR";

/// A parameter's letter and the values it may have; any up to 65535 when none is named.
struct ParameterRule {
    char letter;
    std::vector<int> values;
};

std::vector<ParameterRule> const& parameterRules() {
    static std::vector<int> const codeRates{0, 12, 13, 14, 23, 25, 34, 35, 45, 56, 67, 78, 89, 910};
    static std::vector<ParameterRule> const rules{
        {'B', {5, 6, 7, 8, 10, 1712}},
        {'C', codeRates},
        {'D', codeRates},
        {'G', {4, 8, 16, 32, 128, 19128, 19256}},
        {'I', {0, 1}},
        {'M', {2, 5, 6, 7, 10, 11, 12, 16, 32, 64, 128, 256, kAutomaticQam}},
        {'N', {0, 1}},
        {'O', {0, 15, 10, 5, 20, 25, 35}},
        {'P', {}},
        {'Q', {}},
        {'S', {0, 1}},
        {'T', {1, 2, 4, 8, 16, 32}},
        {'X', {0, 1}},
        {'Y', {0, 1, 2, 4}},
    };
    return rules;
}

/// The stream types of H.264 and HEVC, where the video pid itself says that nothing is known.
constexpr std::string_view kUnknownVideo = "8191=";
constexpr std::string_view kHighDefinitionTypes[] = {"27", "36"};

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        auto const end = text.find(separator);
        parts.emplace_back(trimmed(text.substr(0, end)));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

int numberField(char const* what, std::string_view text, int largest, int base = 10) {
    std::string_view rest = text;
    auto const number = leadingNumber(rest, base);
    if (!number || !rest.empty() || *number > largest) {
        throw LineError(std::string(what) + " '" + std::string(text) + "' is no number up to " +
                        std::to_string(largest));
    }
    return *number;
}

void readNames(std::string field, Channel& channel) {
    if (auto const semicolon = field.find(';'); semicolon != std::string::npos) {
        channel.provider = field.substr(semicolon + 1);
        field.erase(semicolon);
    }
    // A long name may hold a comma, a short one never does.
    if (auto const comma = field.rfind(','); comma != std::string::npos) {
        channel.shortName = field.substr(comma + 1);
        field.erase(comma);
    }
    channel.name = field;
    for (std::string* text : {&channel.name, &channel.shortName, &channel.provider})
        std::replace(text->begin(), text->end(), '|', ':');
}

void checkParameter(char letter, int value) {
    auto const& rules = parameterRules();
    auto const rule = std::find_if(rules.begin(), rules.end(),
                                   [&](ParameterRule const& r) { return r.letter == letter; });
    if (rule == rules.end())
        throw LineError(std::string("parameter ") + letter + " is not known");
    auto const& values = rule->values;
    bool const fits = values.empty()
                          ? value <= 65535
                          : std::find(values.begin(), values.end(), value) != values.end();
    if (!fits && value != kAutomatic)
        throw LineError(std::string("parameter ") + letter + " cannot be " + std::to_string(value));
}

void readParameters(std::string_view field, Channel& channel) {
    while (!field.empty()) {
        char const given = field[0];
        char const letter =
            given >= 'a' && given <= 'z' ? static_cast<char>(given - 'a' + 'A') : given;
        field.remove_prefix(1);
        auto const value = leadingNumber(field);
        if (value) {
            checkParameter(letter, *value);
            channel.parameters[letter] = *value;
        } else if (kPolarizations.find(letter) != std::string_view::npos) {
            channel.polarization = letter;
        } else {
            throw LineError(std::string("parameter ") + given + " has no value");
        }
    }
}

/// The orbital position of "S19.2E" in tenths of a degree.
std::optional<int> readOrbitalPosition(std::string_view source) {
    source.remove_prefix(1);
    auto const degrees = leadingNumber(source);
    if (!degrees || *degrees > 180)
        return std::nullopt;
    int tenths = *degrees * 10;
    if (source.size() == 3 && source[0] == '.' && source[1] >= '0' && source[1] <= '9') {
        tenths += source[1] - '0';
        source.remove_prefix(2);
    }
    if (source == "E")
        return tenths;
    return source == "W" ? std::optional<int>(-tenths) : std::nullopt;
}

void checkSource(std::string const& source) {
    bool const known = source == "C" || source == "T" ||
                       (!source.empty() && source[0] == 'S' && readOrbitalPosition(source));
    if (!known)
        throw LineError("source '" + source + "' is no satellite, cable or terrestrial source");
}

void readVideoPid(std::string const& field, Channel& channel) {
    channel.videoPid = field;
    std::string_view rest = field;
    if (!leadingNumber(rest))
        throw LineError("video pid '" + field + "' is no number");
    if (field.compare(0, kUnknownVideo.size(), kUnknownVideo) != 0)
        return;
    std::string const type = field.substr(kUnknownVideo.size());
    channel.highDefinition =
        std::find(std::begin(kHighDefinitionTypes), std::end(kHighDefinitionTypes), type) !=
        std::end(kHighDefinitionTypes);
}

bool isWordLetter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           (static_cast<unsigned char>(c) & 0x80) != 0;
}

bool hasWord(std::string_view text, std::string_view word) {
    for (auto at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
        std::size_t const end = at + word.size();
        if ((at == 0 || !isWordLetter(text[at - 1])) &&
            (end == text.size() || !isWordLetter(text[end])))
            return true;
    }
    return false;
}

/// A colon would end the field, a semicolon the name.
std::string nameText(std::string name) {
    std::replace(name.begin(), name.end(), ';', ',');
    return withBars(std::move(name));
}

std::string orZero(std::string const& field) { return field.empty() ? "0" : field; }

void readConditionalAccess(std::string const& field, Channel& channel) {
    for (std::string const& part : split(field, ','))
        if (int const id = numberField("conditional access", part, 0xFFFF, 16))
            channel.conditionalAccess.push_back(id);
}

std::string hexadecimal(int number) {
    char digits[8];
    auto const end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    std::transform(digits, end, digits,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return std::string(digits, end);
}

}  // namespace

Channel parseChannel(std::string const& line) {
    auto fields = split(line, ':');
    if (fields.size() < 9 || fields.size() > 13)
        throw LineError("a channel has 9 to 13 fields, this line " + std::to_string(fields.size()));
    if (fields.size() == 9)
        fields.insert(fields.begin() + 7, "0");  // the oldest lists have no teletext pid
    fields.resize(13, "0");

    Channel channel;
    readNames(line.substr(0, line.find(':')), channel);  // blanks around a name belong to it
    channel.frequency = numberField("frequency", fields[1], 2147483647);
    if (channel.frequency == 0)
        throw LineError("the frequency is 0");
    readParameters(fields[2], channel);
    channel.source = fields[3] == "S" ? kUnknownSatellite : fields[3];  // of libdvbv5's converter
    checkSource(channel.source);
    channel.symbolRate = numberField("symbol rate", fields[4], 2147483647);
    readVideoPid(fields[5], channel);
    channel.audioPids = fields[6];
    channel.teletextPid = fields[7];
    readConditionalAccess(fields[8], channel);
    channel.serviceId = numberField("service id", fields[9], 0xFFFF);
    channel.networkId = numberField("network id", fields[10], 0xFFFF);
    channel.transportStreamId = numberField("transport stream id", fields[11], 0xFFFF);
    channel.radioId = numberField("radio id", fields[12], 0xFFFF);
    return channel;
}

std::string formatChannel(Channel const& channel) {
    std::string names = nameText(channel.name);
    // The last comma ends the name, so a name with commas needs one more; an empty one has only it.
    if (!channel.shortName.empty() || names.empty() || names.find(',') != std::string::npos) {
        std::string shortName = nameText(channel.shortName);
        std::replace(shortName.begin(), shortName.end(), ',', ' ');
        names += "," + shortName;
    }
    if (!channel.provider.empty())
        names += ";" + withBars(channel.provider);
    std::string const parameters = channel.parameterText();
    std::string access;
    for (int const id : channel.conditionalAccess)
        access += (access.empty() ? "" : ",") + hexadecimal(id);
    std::string const fields[] = {names,
                                  std::to_string(channel.frequency),
                                  parameters.empty() ? kNoParameters : parameters,
                                  channel.source,
                                  std::to_string(channel.symbolRate),
                                  orZero(channel.videoPid),
                                  orZero(channel.audioPids),
                                  orZero(channel.teletextPid),
                                  orZero(access),
                                  std::to_string(channel.serviceId),
                                  std::to_string(channel.networkId),
                                  std::to_string(channel.transportStreamId),
                                  std::to_string(channel.radioId)};
    std::string line;
    for (std::string const& field : fields)
        line += (&field == fields ? "" : ":") + field;
    return line;
}

Delivery Channel::delivery() const {
    bool const second = parameter('S') == 1;
    switch (source[0]) {
        case 'T':
            return second ? Delivery::DvbT2 : Delivery::DvbT;
        case 'C':
            return second ? Delivery::DvbC2 : Delivery::DvbC;
        case 'I':
            return Delivery::Ip;
        default:
            return second ? Delivery::DvbS2 : Delivery::DvbS;
    }
}

int Channel::frequencyInKHz() const {
    std::int64_t scaled = frequency;
    while (scaled > 0 && scaled < 1000000)
        scaled *= 1000;
    return static_cast<int>(source[0] == 'S' ? scaled : (scaled + 500) / 1000);
}

int Channel::orbitalPosition() const {
    return source[0] == 'S' ? readOrbitalPosition(source).value_or(0) : 0;
}

bool Channel::isRadio() const {
    std::string_view rest = videoPid;
    return leadingNumber(rest).value_or(0) <= 1;  // 1 stands for encrypted radio
}

bool Channel::isHighDefinition() const {
    return !isRadio() && highDefinition.value_or(hasWord(name, "HD") || hasWord(name, "UHD"));
}

std::string Channel::id() const {
    if (source == "I")
        return "I-" + url;
    // Lists without ids know a transponder by its frequency alone.
    bool const hasIds = networkId != 0 || transportStreamId != 0;
    std::string text = source + "-" + std::to_string(networkId) + "-" +
                       std::to_string(hasIds ? transportStreamId : frequencyInKHz() / 1000) + "-" +
                       std::to_string(serviceId);
    return radioId == 0 ? text : text + "-" + std::to_string(radioId);
}

bool Channel::isEncrypted() const {
    return std::any_of(
        conditionalAccess.begin(), conditionalAccess.end(), [](int id) { return id >= 0x10; });
}

int Channel::parameter(char letter) const {
    auto const found = parameters.find(letter);
    bool const automatic = found == parameters.end() || found->second == kAutomatic ||
                           (letter == 'M' && found->second == kAutomaticQam);
    return automatic ? 0 : found->second;
}

std::string Channel::parameterText() const {
    std::string text;
    if (polarization != 0)
        text += polarization;
    for (auto const& [letter, value] : parameters)
        text += letter + std::to_string(value);
    return text;
}

}  // namespace channel_database
