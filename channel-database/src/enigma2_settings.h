// The files of an Enigma2 receiver's settings, from a folder or an archive.
#pragma once

#include <channel-database/channels_conf.h>

#include <map>
#include <string>
#include <string_view>

namespace channel_database {

struct Enigma2Settings {
    std::string place;                         // what stands in front of a file's name in messages
    std::map<std::string, std::string> files;  // their texts by their names
};

bool isEnigma2Service(std::string_view name);  // the list of services, in either version
// Also a bouquet, or the list of them.
bool isEnigma2File(std::string_view name);

// See readEnigma2Folder().
ChannelsConf readEnigma2Settings(Enigma2Settings const& settings);

}  // namespace channel_database
