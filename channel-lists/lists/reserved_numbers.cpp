#include "lists/reserved_numbers.h"

#include "failure.h"
#include "listener.h"
#include "services/ott_numbers.h"

namespace channel_lists {

std::set<std::int64_t> reservedNumbers(List const& list, Tell tell) {
    if (list.favIndex < 1 || list.favIndex > 4)
        return {};
    try {
        std::vector<unsigned int> const numbers = ottNumbers(list.favIndex);
        return std::set<std::int64_t>(numbers.begin(), numbers.end());
    } catch (Failure const& failure) {
        if (tell == Tell::Failures)
            listener().note(failure.what() + std::string("; no number is kept free for it"));
        return {};
    }
}

}  // namespace channel_lists
