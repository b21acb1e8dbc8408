#include "edit/reserved_numbers.h"

#include <iostream>

#include "failure.h"
#include "output/display_text.h"
#include "services/ott_numbers.h"

namespace tool {

std::set<std::int64_t> reservedNumbers(List const& list) {
    if (list.favIndex < 1 || list.favIndex > 4)
        return {};
    try {
        std::vector<unsigned int> const numbers = ottNumbers(list.favIndex);
        return std::set<std::int64_t>(numbers.begin(), numbers.end());
    } catch (Failure const& failure) {
        std::cerr << "channellist: " << displayLines(failure.what())
                  << "; no number is kept free for it\n";
        return {};
    }
}

}  // namespace tool
