// Access to a raw service row by column name.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dbservice_query_result/service_columns.h"

namespace channellist {

// An integer column that does not convert: to a host it is boost's exception, to the row callback
// it also tells which column it was.
class BadServiceColumn : public boost::bad_lexical_cast {
  public:
    explicit BadServiceColumn(ServiceColumn column) : column_(column) {}
    ServiceColumn column() const { return column_; }

  private:
    ServiceColumn column_;
};

// Views of the texts of one row, which lives longer. A row is read once: copying its 34 texts would
// cost more than converting them. Every text is ended by a null character.
class RawServiceRow {
  public:
    // Both constructors raise std::bad_alloc. A null among the values is the empty text.
    RawServiceRow(int count, char const* const* values);
    explicit RawServiceRow(std::vector<std::string> const& row) : texts_(row.begin(), row.end()) {}

    std::size_t size() const { return texts_.size(); }

    // Of a row of at least kServiceColumnCount texts, as all that follows.
    std::string_view text(ServiceColumn column) const {
        return texts_[static_cast<std::size_t>(column)];
    }

    char const* cText(ServiceColumn column) const { return text(column).data(); }

    // Throws BadServiceColumn when the text is no signed number.
    std::int32_t number(ServiceColumn column) const {
        std::string_view const value = text(column);
        // Nearly every number of a row is one digit.
        bool const isOneDigit = value.size() == 1 && value[0] >= '0' && value[0] <= '9';
        return isOneDigit ? value[0] - '0' : convertedNumber(column);
    }

    bool isSet(ServiceColumn column) const { return number(column) != 0; }

  private:
    std::int32_t convertedNumber(ServiceColumn column) const;

    std::vector<std::string_view> texts_;
};

}  // namespace channellist

#endif
