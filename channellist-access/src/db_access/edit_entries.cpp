#include "db_access/edit_entries.h"

#include "support/log.h"
#include "support/number_text.h"

namespace channellist {

namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

bool convertArgument(std::vector<std::string> const& arguments, std::size_t position,
                     std::uint32_t& number) {
    std::optional<std::uint32_t> const value = unsignedNumber(arguments[position]);
    if (!value) {
        LOG_FORMAT(Error, "argument %u is no number: '%s'", static_cast<unsigned int>(position),
                   arguments[position].c_str());
        return false;
    }
    number = *value;
    return true;
}

}  // namespace

std::optional<EditEntry> convertEntry(std::vector<std::string> const& arguments,
                                      std::size_t index) {
    std::size_t const first = 1 + index * kStringsPerEntry;
    EditEntry entry = {};
    if (!convertArgument(arguments, first, entry.flags) ||
        !convertArgument(arguments, first + 1, entry.channelNumber) ||
        !convertArgument(arguments, first + 2, entry.serviceId))
        return std::nullopt;
    return entry;
}

}  // namespace channellist
