// What row callbacks share: their answers to SQLite, and column 0 as an unsigned number.
#ifndef CHANNELLIST_DB_ACCESS_CALLBACK_VALUE_H
#define CHANNELLIST_DB_ACCESS_CALLBACK_VALUE_H

#include <exception>
#include <optional>
#include <vector>

#include "support/number_text.h"

namespace channellist {

inline constexpr int kContinueQuery = 0;
inline constexpr int kStopQuery = -1;

// Nothing when the column is null or no unsigned number.
inline std::optional<std::uint32_t> unsignedColumn(char** values) {
    if (values == nullptr || values[0] == nullptr)
        return std::nullopt;
    return unsignedNumber(values[0]);
}

// Stores column 0 in `word`, or stops the query with the word unchanged.
inline int storeUnsigned(char** values, unsigned int& word) {
    std::optional<std::uint32_t> const value = unsignedColumn(values);
    if (!value)
        return kStopQuery;
    word = *value;
    return kContinueQuery;
}

// Appends a number, or stops the query without memory. Raises nothing: SQLite is the caller.
inline int appendNumber(unsigned int number, std::vector<unsigned int>& numbers) noexcept {
    try {
        numbers.push_back(number);
    } catch (std::exception const&) {
        return kStopQuery;
    }
    return kContinueQuery;
}

// Appends column 0 to `numbers`, or stops the query.
inline int appendUnsigned(char** values, std::vector<unsigned int>& numbers) noexcept {
    std::optional<std::uint32_t> const value = unsignedColumn(values);
    return value ? appendNumber(*value, numbers) : kStopQuery;
}

}  // namespace channellist

#endif
