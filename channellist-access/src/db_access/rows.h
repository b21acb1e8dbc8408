// The two rows of a row callback: the raw row that it makes of one SQL row, and the result row.
#ifndef CHANNELLIST_DB_ACCESS_ROWS_H
#define CHANNELLIST_DB_ACCESS_ROWS_H

#include <channellist-access/result_rows.h>
#include <boost/smart_ptr/make_shared.hpp>

#include <exception>

namespace channellist {

// Fills the empty `row` with the texts of `count` columns, a NULL as the empty string. False when
// memory runs out.
inline bool copyRawRow(int count, char** values, ResultRow& row) noexcept {
    try {
        row.reserve(count > 0 ? static_cast<std::size_t>(count) : 0);
        for (int column = 0; column < count; ++column)
            row.emplace_back(values[column] != nullptr ? values[column] : "");
    } catch (std::exception const&) {
        return false;
    }
    return true;
}

// An empty result row with room for `count` columns. Null when memory runs out.
inline boost::shared_ptr<ResultRow> newResultRow(std::size_t count) noexcept {
    try {
        auto row = boost::make_shared<ResultRow>();
        row->reserve(count);
        return row;
    } catch (std::exception const&) {
        return boost::shared_ptr<ResultRow>();
    }
}

}  // namespace channellist

#endif
