// Access to a raw service row by column name.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dbservice_query_result/service_columns.h"

namespace channellist {

// Views of the texts of one row, which lives longer. A row is read once: copying its 34 texts would
// cost more than converting them. Every text is ended by a null character.
class RawServiceRow {
  public:
    // Told of an integer column that does not convert and counts as 0.
    using BadColumn = void (*)(RawServiceRow const&, ServiceColumn);

    // Both constructors raise std::bad_alloc. A null among the values is the empty text.
    RawServiceRow(int count, char const* const* values, BadColumn badColumn);
    explicit RawServiceRow(std::vector<std::string> const& row) : texts_(row.begin(), row.end()) {}

    std::size_t size() const { return texts_.size(); }

    // Of a row of at least kServiceColumnCount texts, as all that follows.
    std::string_view text(ServiceColumn column) const {
        return texts_[static_cast<std::size_t>(column)];
    }

    char const* cText(ServiceColumn column) const { return text(column).data(); }

    // When the text is no signed number: 0 where the row was made with a BadColumn, else
    // boost::bad_lexical_cast is thrown.
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
    BadColumn badColumn_ = nullptr;
};

}  // namespace channellist

#endif
