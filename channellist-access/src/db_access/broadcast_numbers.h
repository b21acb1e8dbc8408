// The channel numbers that OTT channels leave to the broadcast services of a FAV list.
#ifndef CHANNELLIST_DB_ACCESS_BROADCAST_NUMBERS_H
#define CHANNELLIST_DB_ACCESS_BROADCAST_NUMBERS_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace channellist {

// Delivers the numbers one by one, so that a huge OTT number costs no memory.
//
// Without OTT numbers: 1, 2, 3, ... Otherwise, with m the largest OTT number, first the symmetric
// difference of the sorted OTT numbers and 1..m+1 (nothing when m is 4294967295), by one merge that
// drops equal heads in pairs: an OTT number that is 0 or repeated comes out itself. Then on from
// the last number, modulo 2^32.
class BroadcastNumbers {
  public:
    // `ottNumbers` is sorted ascending and outlives this object.
    explicit BroadcastNumbers(std::vector<unsigned int> const& ottNumbers);

    // True while the merge has numbers left, false where counting on begins.
    bool merging();

    std::uint32_t next();

  private:
    void dropEqualHeads();
    bool ottLeft() const { return ottIndex_ < ottNumbers_.size(); }
    bool sequenceLeft() const { return sequence_ <= sequenceLast_; }

    std::vector<unsigned int> const& ottNumbers_;
    std::size_t ottIndex_ = 0;
    std::uint64_t sequence_ = 1;
    std::uint64_t sequenceLast_ = 0;
    std::uint32_t last_ = 0;
};

}  // namespace channellist

#endif
