#include "output/folded_text.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <vector>

namespace tool {

std::string folded(std::string const& text) {
    auto* const bytes =
        utf8proc_NFKC_Casefold(reinterpret_cast<utf8proc_uint8_t const*>(text.c_str()));
    std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> const owner(bytes, std::free);
    return bytes == nullptr ? text : std::string(reinterpret_cast<char const*>(bytes));
}

std::size_t editDistance(std::string const& a, std::string const& b) {
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

}  // namespace tool
