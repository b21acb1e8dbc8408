// An archive of an Enigma2 receiver's settings, as its backups are: .tar.gz, .zip and others.
#pragma once

#include <channel-database/channels_conf.h>

#include <string>
#include <string_view>

namespace channel_database {

bool isArchive(std::string_view beginning);
// The settings of the one folder in it that holds a list of services, or bouquets alone; see
// readEnigma2Folder(). Nothing is unpacked to the disk. Throws std::runtime_error, which names the
// archive, when it is cut or damaged, unpacks to more than 256 MiB, holds paths upwards or links in
// the place of lists, or holds no such folder or several.
ChannelsConf readEnigma2Archive(std::string_view content, std::string const& name);

}  // namespace channel_database
