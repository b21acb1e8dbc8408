// The form of an edit request: triples of strings behind the list's uuid, and the FAV lists that
// their flags name.
#ifndef CHANNELLIST_DB_ACCESS_EDIT_ENTRIES_H
#define CHANNELLIST_DB_ACCESS_EDIT_ENTRIES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace channellist {

inline constexpr std::size_t kStringsPerEntry = 3;
inline constexpr std::size_t kFavListCount = 4;

// Bits of an entry's flags. A FAV list edit reads the first alone.
inline constexpr std::uint32_t kEditDeleted = 0x01;
inline constexpr std::uint32_t kEditRestore = 0x02;
inline constexpr std::uint32_t kEditRenumberFav1 = 0x04;  // FAV2 to FAV4: the next bits

struct EditEntry {
    std::uint32_t flags;
    std::uint32_t channelNumber;
    std::uint32_t serviceId;
};

inline std::size_t entryCount(std::vector<std::string> const& arguments) {
    return arguments.size() / kStringsPerEntry;
}

// Converts entry `index` (from 0). Nothing when a string is no unsigned number, which is logged
// with its position and text.
std::optional<EditEntry> convertEntry(std::vector<std::string> const& arguments, std::size_t index);

}  // namespace channellist

#endif
