// The field-id lists that name the columns of result rows, and the attribute word of a list.
#include <channellist-access/field_ids.h>

#include <iterator>
#include <string_view>

#include "support/text.h"

int srv[16] = {
    SERVICE_FIELD_CHANNEL_NUMBER,
    SERVICE_FIELD_CAPTION,
    SERVICE_FIELD_ITEM_TYPE,
    SERVICE_FIELD_ATTRIBUTES,
    SERVICE_FIELD_FRONTEND_CLASS,
    SERVICE_FIELD_SERVICE_ID,
    SERVICE_FIELD_UUID,
    SERVICE_FIELD_TRANSPORT_STREAM_ID,
    SERVICE_FIELD_ORIGINAL_NETWORK_ID,
    SERVICE_FIELD_VISIBLE,
    SERVICE_FIELD_SELECTABLE,
    SERVICE_FIELD_PID,
    SERVICE_FIELD_LCN,
    SERVICE_FIELD_NIT_ID,
    SERVICE_FIELD_SYMBOL_RATE,
    SERVICE_FIELD_POLARIZATION,
};

int fl[8] = {
    FOLDER_FIELD_CAPTION,  FOLDER_FIELD_UUID,       FOLDER_FIELD_FLAGS,
    FOLDER_FIELD_EMPTY,    FOLDER_FIELD_CAPABILITY, FOLDER_FIELD_NETWORK_ID,
    FOLDER_FIELD_FAV_NAME, FOLDER_FIELD_UPDATE_TAG,
};

std::vector<int> m_svfield(std::begin(srv), std::end(srv));
std::vector<int> m_flfield(std::begin(fl), std::end(fl));

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

unsigned int attr(std::string const& creator, unsigned int attributes) {
    unsigned int const word = attributes << 16;
    for (CreatorFlags const& rule : kCreatorFlags)
        if (rule.whole ? creator == rule.creator : channellist::startsWith(creator, rule.creator))
            return word + rule.flags;
    return word;
}
