// The two rows of a row callback: the raw row that it makes of one SQL row, and the result row.
#ifndef CHANNELLIST_DB_ACCESS_ROWS_H
#define CHANNELLIST_DB_ACCESS_ROWS_H

#include <channellist-access/result_rows.h>
#include <boost/smart_ptr/make_shared.hpp>

#include <exception>
#include <memory>
#include <new>

namespace channellist {

// The texts of `count` columns, a NULL as the empty string. Null when memory runs out.
inline std::unique_ptr<ResultRow> copyRawRow(int count, char** values) noexcept {
    std::unique_ptr<ResultRow> row(new (std::nothrow) ResultRow);
    if (!row || count <= 0)
        return row;
    try {
        row->reserve(static_cast<std::size_t>(count));
        for (int column = 0; column < count; ++column)
            row->emplace_back(values[column] != nullptr ? values[column] : "");
    } catch (std::exception const&) {
        row.reset();
    }
    return row;
}

// A result row of `count` empty strings. Null when memory runs out.
inline boost::shared_ptr<ResultRow> newResultRow(std::size_t count) noexcept {
    try {
        return boost::make_shared<ResultRow>(count);
    } catch (std::bad_alloc const&) {
        return boost::shared_ptr<ResultRow>();
    }
}

}  // namespace channellist

#endif
