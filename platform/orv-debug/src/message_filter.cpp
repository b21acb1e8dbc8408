#include "message_filter.h"

#include <algorithm>
#include <charconv>

#include "message_writer.h"

namespace orvdebug {
namespace {

constexpr unsigned int kErrorLevel = 1000;
constexpr std::string_view kBlanks = " \t";

std::string_view trimmed(std::string_view text) noexcept {
    auto const first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    text.remove_prefix(first);
    text.remove_suffix(text.size() - 1 - text.find_last_not_of(kBlanks));
    return text;
}

void report(std::string_view item, char const* what) noexcept {
    writeMessage("liborv-debug: ORV_DEBUG: \"%.*s\" %s\n", static_cast<int>(item.size()),
                 item.data(), what);
}

}  // namespace

MessageFilter::MessageFilter(std::string_view text) noexcept {
    while (!text.empty()) {
        auto const end = std::min(text.find(','), text.size());
        addItem(trimmed(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

bool MessageFilter::enables(unsigned int module, unsigned int level) const noexcept {
    auto const last = openings_.begin() + static_cast<std::ptrdiff_t>(count_);
    return level == kErrorLevel || std::any_of(openings_.begin(), last, [&](Opening const& open) {
               return (open.module == kAny || open.module == module) &&
                      (open.level == kAny || open.level == level);
           });
}

void MessageFilter::addItem(std::string_view item) noexcept {
    Opening opening;
    if (item.empty())
        return;
    if (!parseItem(item, opening))
        report(item, "is not [MODULE:]LEVEL and opens nothing");
    else if (count_ == openings_.size())
        report(item, "is one item too many and opens nothing");
    else
        openings_[count_++] = opening;
}

bool MessageFilter::parseItem(std::string_view item, Opening& opening) noexcept {
    auto const colon = item.find(':');
    bool const hasModule = colon != std::string_view::npos;
    auto const module = hasModule ? trimmed(item.substr(0, colon)) : std::string_view("*");
    auto const level = hasModule ? trimmed(item.substr(colon + 1)) : item;
    return parseWord(module, opening.module) && (level == "all" || parseWord(level, opening.level));
}

bool MessageFilter::parseWord(std::string_view text, unsigned int& word) noexcept {
    if (text == "*")
        return true;
    std::string_view const prefix = text.substr(0, 2);
    bool const hexadecimal = prefix == "0x" || prefix == "0X";
    if (hexadecimal)
        text.remove_prefix(prefix.size());
    auto const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, word, hexadecimal ? 16 : 10);
    return result.ec == std::errc() && result.ptr == end && word < kAny;
}

}  // namespace orvdebug
