#include "text/folded_text.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <vector>

#include "text/display_text.h"

namespace channel_lists {
namespace {

std::vector<utf8proc_int32_t> charactersOf(std::string const& text) {
    std::vector<utf8proc_int32_t> characters;
    auto const* const bytes = reinterpret_cast<utf8proc_uint8_t const*>(text.data());
    auto const size = static_cast<utf8proc_ssize_t>(text.size());
    for (utf8proc_ssize_t at = 0; at < size;) {
        utf8proc_int32_t character = 0;
        at += std::max<utf8proc_ssize_t>(1, utf8proc_iterate(bytes + at, size - at, &character));
        characters.push_back(character);
    }
    return characters;
}

}  // namespace

std::string folded(std::string const& text) {
    std::string const shown = displayText(text);  // UTF-8, whatever the bytes are
    auto const* const bytes = reinterpret_cast<utf8proc_uint8_t const*>(shown.c_str());
    std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> const owner(
        utf8proc_NFKC_Casefold(bytes), std::free);
    return owner == nullptr ? shown : std::string(reinterpret_cast<char const*>(owner.get()));
}

std::size_t editDistance(std::string const& from, std::string const& to) {
    auto const a = charactersOf(from);
    auto const b = charactersOf(to);
    std::vector<std::size_t> row(b.size() + 1);  // for the beginning of `a` that is looked at
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            std::size_t const replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row.back();
}

}  // namespace channel_lists
