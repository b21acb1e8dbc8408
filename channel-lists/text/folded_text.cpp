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
    // Row i, column j: between the first i characters of `a` and the first j of `b`.
    std::vector<std::vector<std::size_t>> distance(a.size() + 1,
                                                   std::vector<std::size_t>(b.size() + 1));
    std::iota(distance[0].begin(), distance[0].end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        distance[i][0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            std::size_t const replaced = distance[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            distance[i][j] = std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1, replaced});
            bool const areSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (areSwapped)
                distance[i][j] = std::min(distance[i][j], distance[i - 2][j - 2] + 1);
        }
    }
    return distance.back().back();
}

}  // namespace channel_lists
