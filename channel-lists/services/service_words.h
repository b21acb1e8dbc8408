// What the columns of a service row mean, in words.
#pragma once

#include <channellist-access/result_rows.h>

#include <string>
#include <vector>

namespace channel_lists {

// Bits of a service row's attribute word.
constexpr unsigned int kScrambled = 0x1;
constexpr unsigned int kHighDefinition = 0x4;
constexpr unsigned int kLocked = 0x10;
constexpr unsigned int kNotDeleted = 0x200;
constexpr unsigned int kProtected = 0x40000;

// These take a row of all columns, numbered by field id.

unsigned int attributesOf(ResultRow const& service);
bool isDeleted(ResultRow const& service);
// "TV", "radio", or the input: "HDMI", "SCART" ...
std::string kindOf(ResultRow const& service);
// "satellite", "cable", "terrestrial", "analogue", "IP"; "" for inputs.
std::string deliveryOf(ResultRow const& service);
// "1-1019-10301": original network, transport stream and service id; "" without one.
std::string tripletOf(ResultRow const& service);
// How it is received: "satellite 4, 11837 MHz", "cable, 394 MHz".
std::string tuningOf(ResultRow const& service);
// "hidden", "invisible", "scrambled", "locked" ...
std::vector<std::string> statesOf(ResultRow const& service);
// The FAV lists that the service says it is in, "FAV1" to "FAV4".
std::vector<std::string> favouritesOf(ResultRow const& service);

}  // namespace channel_lists
