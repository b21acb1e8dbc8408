// Access to a raw service row by column name.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <cstdint>
#include <string>
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

// A view of a row that the caller owns.
class RawServiceRow {
  public:
    // Throws std::out_of_range when the row is shorter than the query's column list.
    explicit RawServiceRow(std::vector<std::string> const& row);

    std::string const& text(ServiceColumn column) const {
        return row_[static_cast<std::size_t>(column)];
    }

    // Throws BadServiceColumn when the text is no signed number.
    std::int32_t number(ServiceColumn column) const {
        std::string const& value = text(column);
        // Nearly every number of a row is one digit.
        bool const isOneDigit = value.size() == 1 && value[0] >= '0' && value[0] <= '9';
        return isOneDigit ? value[0] - '0' : convertedNumber(column);
    }

    bool isSet(ServiceColumn column) const { return number(column) != 0; }

  private:
    std::int32_t convertedNumber(ServiceColumn column) const;

    std::vector<std::string> const& row_;
};

}  // namespace channellist

#endif
