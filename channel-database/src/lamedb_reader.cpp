// The list of all services of an Enigma2 receiver.
#include <channel-database/enigma2.h>
#include <channel-database/utf8.h>

#include <charconv>
#include <cstdlib>
#include <map>
#include <vector>

#include "enigma2_ids.h"
#include "lamedb_numbers.h"
#include "line_text.h"

namespace channel_database {
namespace {

constexpr std::string_view kHeader = "eDVB services /";
constexpr int kLeastSatelliteKHz = 3400000;
constexpr int kConverterKHz = 1000000;

// Fields between colons as decimal numbers; 0 where one is missing.
class Fields {
  public:
    explicit Fields(std::string_view text) {
        while (!text.empty()) {
            std::string_view const field = text.substr(0, text.find(':'));
            int number = 0;
            std::from_chars(field.data(), field.data() + field.size(), number);
            numbers_.push_back(number);
            text.remove_prefix(std::min(text.size(), field.size() + 1));
        }
    }
    int operator[](std::size_t place) const {
        return place < numbers_.size() ? numbers_[place] : 0;
    }
    std::size_t size() const { return numbers_.size(); }

  private:
    std::vector<int> numbers_;
};

void setParameter(Channel& channel, char letter, int value) {
    if (value != 0)
        channel.parameters[letter] = value;
}

void setInversion(Channel& channel, int place) {
    setParameter(channel, 'I', place == kLamedbInverted ? 1 : 0);
}

void setSatellite(Fields const& fields, Channel& channel) {
    int const position = orbitalPosition(fields[4]);
    channel.frequency = fields[0];
    channel.symbolRate = fields[1] / 1000;
    if (channel.frequency < kLeastSatelliteKHz && position >= 0 && position <= 2) {
        channel.frequency -= kConverterKHz;
        channel.source = position == 2 ? "T" : "C";
        return;
    }
    channel.source = orbitalSource(position);
    char const polarization = valueAt(kLamedbPolarizations, fields[2]);
    channel.polarization = polarization != 0 ? polarization : 'H';
    setParameter(channel, 'C', valueAt(kLamedbCodeRates, fields[3]));
    setInversion(channel, fields[5]);
    bool const hasSystem = fields.size() > 7;
    channel.parameters['S'] = hasSystem && fields[7] == 1 ? 1 : 0;
    setParameter(channel, 'M', hasSystem ? valueAt(kLamedbSatelliteModulations, fields[8]) : 2);
}

void setCable(Fields const& fields, Channel& channel) {
    channel.source = "C";
    channel.frequency = fields[0];
    channel.symbolRate = fields[1] / 1000;
    setParameter(channel, 'M', valueAt(kLamedbCableModulations, fields[3]));
    setInversion(channel, fields[2]);
}

void setTerrestrial(Fields const& fields, Channel& channel) {
    channel.source = "T";
    channel.frequency = fields[0];
    channel.parameters['S'] = fields[10] == 1 ? 1 : 0;
    setParameter(channel, 'B', valueAt(kLamedbBandwidths, fields[1]));
    setParameter(channel, 'C', valueAt(kLamedbTerrestrialCodeRates, fields[2]));
    setParameter(channel, 'M', valueAt(kLamedbTerrestrialModulations, fields[4]));
    setParameter(channel, 'P', fields[10] == 1 ? fields[11] : 0);
    setInversion(channel, fields[8]);
}

// "s 11362000:22000000:...", behind a tab, or in version 5 behind a comma without the blank.
bool setTransponder(std::string_view text, Channel& channel) {
    if (text.size() < 3)
        return false;
    Fields const fields(text.substr(2));
    switch (text[0]) {
        case 's':
            setSatellite(fields, channel);
            break;
        case 'c':
            setCable(fields, channel);
            break;
        case 't':
            setTerrestrial(fields, channel);
            break;
        default:
            return false;
    }
    return channel.frequency > 0;
}

// "p:Provider,c:000213,C:0d05,f:40"
void setProviderAndAccess(std::string_view text, Channel& channel) {
    while (!text.empty()) {
        std::string_view const part = text.substr(0, text.find(','));
        if (part.substr(0, 2) == "p:")
            channel.provider = shownText(part.substr(2));
        else if (part.substr(0, 2) == "C:")
            // 0 names no system, but is only there where one is in use.
            if (auto const id = hexadecimalNumber(part.substr(2)))
                channel.conditionalAccess.push_back(*id != 0 ? *id & 0xFFFF : kUnknownAccess);
        text.remove_prefix(std::min(text.size(), part.size() + 1));
    }
}

class LamedbReader {
  public:
    // Whole lines of each version become the parts of version 4.
    void read(std::istream& text) {
        std::string header = line(text);
        isFifth_ = header.find("/5/") != std::string::npos;
        for (std::string current; next(text, current);)
            isFifth_ ? readFifth(current) : readOlder(current, text);
        // As when a copy of the file was cut short; version 5 has no sections.
        if (section_ != "end")
            list.rejected.push_back({line_, "the file ends in the midst of its " + section_});
        else if (isFifth_ && isCut_)
            list.rejected.push_back({line_, "the file ends in the midst of a line"});
    }

    ChannelsConf list;

  private:
    bool next(std::istream& text, std::string& current) {
        current = line(text);
        return static_cast<bool>(text) || !current.empty();
    }

    std::string line(std::istream& text) {
        std::string result;
        if (std::getline(text, result)) {
            ++line_;
            isCut_ = text.eof();
        }
        if (!result.empty() && result.back() == '\r')
            result.pop_back();
        return isUtf8(result) ? result : latin1ToUtf8(result);
    }

    void readOlder(std::string const& current, std::istream& text) {
        if (current == "transponders" || current == "services" || current == "end") {
            section_ = current;  // "end" is followed by a farewell
        } else if (section_ != "end" && current != "/" && !current.empty()) {
            int const at = line_;
            std::string const second = line(text);
            if (section_ == "transponders")
                addTransponder(current, trimmed(second), at);
            else
                addService(current, second, line(text), at);
        }
    }

    void readFifth(std::string const& current) {
        auto const comma = current.find(',');
        if (comma == std::string::npos || current.size() < 3 || current[1] != ':')
            return;  // a comment, or the end
        std::string const ids = current.substr(2, comma - 2);
        std::string const rest = current.substr(comma + 1);
        if (current[0] == 't') {
            addTransponder(ids, rest, line_);
        } else if (current[0] == 's' && rest.size() > 1 && rest[0] == '"') {
            auto end = rest.find("\",p:");  // the name may hold quotes
            if (end == std::string::npos)
                end = std::max<std::size_t>(1, rest.rfind('"'));
            std::string const behind = rest.substr(std::min(rest.size(), end + 1));
            addService(ids, rest.substr(1, end - 1), behind.empty() ? "" : behind.substr(1), line_);
        }
    }

    void addTransponder(std::string const& ids, std::string_view parameters, int at) {
        Channel channel;
        auto const numbers = hexadecimalFields(ids, 3);
        if (numbers && setTransponder(parameters, channel))
            transponders_[transponderKey((*numbers)[0], (*numbers)[1], (*numbers)[2])] = channel;
        else
            list.rejected.push_back({at, "a transponder that cannot be read"});
    }

    void addService(std::string const& ids, std::string const& name, std::string const& details,
                    int at) {
        auto const numbers = hexadecimalFields(ids, 4);
        if (!numbers) {
            list.rejected.push_back({at, "a service that cannot be read", ids});
            return;
        }
        int const type = typeOf(ids);
        auto const transponder =
            transponders_.find(transponderKey((*numbers)[1], (*numbers)[2], (*numbers)[3]));
        std::string const shown = shownText(name);
        if (!isWatched(type)) {
            list.rejected.push_back({at, "a service type that is no TV or radio",
                                     "type " + std::to_string(type) + ": " + shown});
            return;
        }
        if (transponder == transponders_.end()) {
            list.rejected.push_back({at, "no transponder of the list carries it", shown});
            return;
        }
        Channel channel = transponder->second;
        channel.serviceId = static_cast<int>((*numbers)[0] & 0xFFFF);
        channel.transportStreamId = static_cast<int>((*numbers)[2] & 0xFFFF);
        channel.networkId = static_cast<int>((*numbers)[3] & 0xFFFF);
        channel.name = shown.empty() ? tripletText(channel) : shown;
        channel.videoPid = isRadioType(type) ? "0" : "8191";
        if (isHighDefinitionType(type))
            channel.highDefinition = true;
        channel.place = (*numbers)[1];
        channel.audioPids = channel.teletextPid = "0";
        setProviderAndAccess(details, channel);
        channel.line = at;
        channel.number = static_cast<int>(list.channels.size()) + 1;
        list.channels.push_back(std::move(channel));
    }

    // The fifth field, in decimal.
    static int typeOf(std::string const& ids) {
        std::size_t at = 0;
        for (int colons = 0; colons < 4 && at != std::string::npos; ++colons)
            at = ids.find(':', colons == 0 ? 0 : at + 1);
        return at == std::string::npos ? 0 : std::atoi(ids.c_str() + at + 1);
    }

    std::map<TransponderKey, Channel> transponders_;
    bool isFifth_ = false;
    bool isCut_ = false;  // whether the last line has no end
    std::string section_ = "end";
    int line_ = 0;
};

}  // namespace

bool isLamedb(std::string_view beginning) { return beginning.substr(0, kHeader.size()) == kHeader; }

ChannelsConf parseLamedb(std::istream& text) {
    LamedbReader reader;
    reader.read(text);
    return std::move(reader.list);
}

}  // namespace channel_database
