// The result row that a row callback makes of one SQL row.
#ifndef CHANNELLIST_DB_ACCESS_RESULT_ROW_H
#define CHANNELLIST_DB_ACCESS_RESULT_ROW_H

#include <channellist-access/result_rows.h>
#include <boost/smart_ptr/make_shared.hpp>

#include <exception>

namespace channellist {

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

// Appends the column that `makeText` gives. Its string is made where it stays: moving a text costs
// as much as making it.
template <typename MakeText>
void appendInPlace(ResultRow& row, MakeText const& makeText) {
    struct Text {
        MakeText const& make;
        operator std::string() const { return make(); }
    };
    row.emplace_back(Text{makeText});
}

}  // namespace channellist

#endif
