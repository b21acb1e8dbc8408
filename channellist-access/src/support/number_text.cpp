#include "support/number_text.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace channellist {

namespace {

// A sign and the magnitude behind it.
struct SignedText {
    bool negative;
    std::string_view digits;
};

SignedText splitSign(std::string_view text) {
    bool const negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    return {negative, text};
}

// All of `digits` as a 32-bit magnitude; from_chars takes no sign for unsigned numbers.
std::optional<std::uint32_t> magnitude(std::string_view digits) {
    std::uint32_t value = 0;
    char const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

template <typename Number>
std::string decimal(Number number) {
    char text[std::numeric_limits<Number>::digits10 + 2];  // the last digit and a sign
    return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

}  // namespace

std::optional<std::int32_t> signedNumber(std::string_view text) {
    auto const [negative, digits] = splitSign(text);
    std::optional<std::uint32_t> const size = magnitude(digits);
    std::int64_t const limit = std::numeric_limits<std::int32_t>::max();
    if (!size || *size > limit + (negative ? 1 : 0))
        return std::nullopt;
    std::int64_t const value = *size;
    return static_cast<std::int32_t>(negative ? -value : value);
}

std::optional<std::uint32_t> unsignedNumber(std::string_view text) {
    auto const [negative, digits] = splitSign(text);
    std::optional<std::uint32_t> const size = magnitude(digits);
    return size && negative ? 0U - *size : size;
}

std::int32_t leadingNumber(std::string_view text) {
    std::size_t const start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos)
        return 0;
    auto const [negative, digits] = splitSign(text.substr(start));
    std::uint32_t size = 0;
    auto const [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), size);
    using Limits = std::numeric_limits<std::int32_t>;
    std::uint32_t const largest = Limits::max();
    if (error == std::errc::result_out_of_range || size > largest)
        return negative ? Limits::min() : Limits::max();
    return negative ? -static_cast<std::int32_t>(size) : static_cast<std::int32_t>(size);
}

std::string leadingNumberText(std::string_view text) {
    // Digits without a leading zero, and too few to saturate.
    constexpr std::size_t kMostDigits = std::numeric_limits<std::int32_t>::digits10;
    bool const isPlain =
        !text.empty() && text.size() <= kMostDigits && (text[0] != '0' || text.size() == 1) &&
        std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    return isPlain ? std::string(text) : numberText(leadingNumber(text));
}

std::string numberText(std::int32_t number) { return decimal(number); }

std::string numberText(std::uint32_t number) { return decimal(number); }

}  // namespace channellist
