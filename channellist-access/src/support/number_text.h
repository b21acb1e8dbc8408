// Numbers from text and to text, the same on every word size and under every global locale.
#ifndef CHANNELLIST_SUPPORT_NUMBER_TEXT_H
#define CHANNELLIST_SUPPORT_NUMBER_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace channellist {

// The rules of boost::lexical_cast to a signed 32-bit number in the classic locale: an optional
// sign, then digits alone. Calling boost would consult the global locale for digit grouping.
std::optional<std::int32_t> signedNumber(std::string_view text);

// The same for an unsigned 32-bit number; "-" negates modulo 2^32.
std::optional<std::uint32_t> unsignedNumber(std::string_view text);

// The rules of strtol in base 10 with a 32-bit long: white space, an optional sign and digits are
// read, the rest is ignored; no digits give 0, and the result saturates.
std::int32_t leadingNumber(std::string_view text);

// numberText(leadingNumber(text)), for the price of a copy where that is the text itself.
std::string leadingNumberText(std::string_view text);

std::string numberText(std::int32_t number);
std::string numberText(std::uint32_t number);

}  // namespace channellist

#endif
