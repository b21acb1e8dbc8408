// A raw service row and its numbers.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H

#include <cstdint>

#include "dbservice_query_result/service_columns.h"
#include "support/raw_row.h"

namespace channellist {

// Texts and numbers are those of a row of at least kServiceColumnCount columns.
class RawServiceRow : public RawRow<ServiceColumn> {
  public:
    // Told of an integer column that does not convert and counts as 0.
    using BadColumn = void (*)(RawServiceRow const&, ServiceColumn);

    RawServiceRow(int count, char const* const* values, BadColumn badColumn)
        : RawRow(count, values), badColumn_(badColumn) {}
    using RawRow::RawRow;

    // When the text is no signed number: 0 where the row was made with a BadColumn, else
    // boost::bad_lexical_cast is thrown.
    std::int32_t number(ServiceColumn column) const {
        // Nearly every number of a row is one digit.
        char const* const digit = value(column);
        bool const isOneDigit =
            digit != nullptr && digit[0] >= '0' && digit[0] <= '9' && digit[1] == '\0';
        return isOneDigit ? digit[0] - '0' : convertedNumber(column);
    }

    bool isSet(ServiceColumn column) const { return number(column) != 0; }

  private:
    std::int32_t convertedNumber(ServiceColumn column) const;

    BadColumn badColumn_ = nullptr;
};

}  // namespace channellist

#endif
