#include "db_access/broadcast_numbers.h"

#include <limits>

namespace channellist {

BroadcastNumbers::BroadcastNumbers(std::vector<unsigned int> const& ottNumbers)
    : ottNumbers_(ottNumbers) {
    if (!ottNumbers.empty() && ottNumbers.back() != std::numeric_limits<std::uint32_t>::max())
        sequenceLast_ = std::uint64_t{ottNumbers.back()} + 1;
}

void BroadcastNumbers::dropEqualHeads() {
    while (ottLeft() && sequenceLeft() && ottNumbers_[ottIndex_] == sequence_) {
        ++ottIndex_;
        ++sequence_;
    }
}

bool BroadcastNumbers::merging() {
    dropEqualHeads();
    return ottLeft() || sequenceLeft();
}

std::uint32_t BroadcastNumbers::next() {
    if (!merging())
        return ++last_;
    bool const takeOtt = ottLeft() && (!sequenceLeft() || ottNumbers_[ottIndex_] < sequence_);
    last_ = takeOtt ? ottNumbers_[ottIndex_++] : static_cast<std::uint32_t>(sequence_++);
    return last_;
}

}  // namespace channellist
