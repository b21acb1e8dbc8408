/// Lists of IP channels in the form of media players, M3U:
///
///     #EXTM3U
///     #EXTINF:-1 tvg-chno="5" tvg-name="News" group-title="Info, late",News, at five
///     https://example.org/news
///
/// The name stands behind the first comma outside of quotes. `radio="true"` marks radio, `#EXTGRP:`
/// names a group where the line has none.
#pragma once

#include <channel-database/channels_conf.h>

#include <istream>
#include <string>
#include <string_view>

namespace channel_database {

bool isM3u(std::string_view beginning);
/// An address without a scheme is rejected. A number that one before it has is given up for the
/// next free one. Lines that are not UTF-8 are taken as Latin-1.
ChannelsConf parseM3u(std::istream& text);

constexpr char const* kM3uBeginning = "#EXTM3U\n";
/// The two lines of an IP channel; without a group where `group` is empty.
std::string formatM3u(Channel const& channel, std::string const& group);

}  // namespace channel_database
