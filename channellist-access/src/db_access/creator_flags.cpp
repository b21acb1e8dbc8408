#include "db_access/creator_flags.h"

#include <channellist-access/field_ids.h>

#include "support/text.h"

namespace channellist {
namespace {

// What a creator's text says of its list; the first row that fits counts.
struct CreatorFlags {
    std::string_view creator;
    bool whole;  // the whole text, not its beginning alone
    unsigned int flags;
};

constexpr CreatorFlags kCreatorFlags[] = {
    {"User.tv", false, 0x05},
    {"User.radio", false, 0x09},
    {"servicelist://tamun.analog", true, 0x140},
    {"servicelist://tamun.dvb.65536", false, 0x42},
    {"servicelist:", false, 0x40},
    {"tamun.sl2.servicelist$all", false, 0x10},
    {"tamun.sl2.servicelist$av", false, 0x20},
};

}  // namespace

unsigned int attributeWord(std::string_view creator, unsigned int attributes) {
    unsigned int const word = attributes << 16;
    for (CreatorFlags const& rule : kCreatorFlags)
        if (rule.whole ? creator == rule.creator : startsWith(creator, rule.creator))
            return word + rule.flags;
    return word;
}

}  // namespace channellist

unsigned int attr(std::string const& creator, unsigned int attributes) {
    return channellist::attributeWord(creator, attributes);
}
