// Access to a raw service row by column name.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_RAW_SERVICE_ROW_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dbservice_query_result/service_columns.h"

namespace channellist {

// Views the texts of one row, which lives longer, out of SQLite's columns or a row of strings. A
// row is read once, most of its texts never: copying or measuring all 34 would cost more than
// converting the row. Every text is ended by a null character.
class RawServiceRow {
  public:
    // Told of an integer column that does not convert and counts as 0.
    using BadColumn = void (*)(RawServiceRow const&, ServiceColumn);

    // A null among the values is the empty text.
    RawServiceRow(int count, char const* const* values, BadColumn badColumn)
        : size_(count > 0 ? static_cast<std::size_t>(count) : 0),
          values_(values),
          badColumn_(badColumn) {}
    explicit RawServiceRow(std::vector<std::string> const& row)
        : size_(row.size()), strings_(row.data()) {}

    std::size_t size() const { return size_; }

    // Of a row of at least kServiceColumnCount texts, as all that follows.
    std::string_view text(ServiceColumn column) const {
        auto const index = static_cast<std::size_t>(column);
        if (strings_ != nullptr)
            return strings_[index];
        return values_[index] == nullptr ? std::string_view("") : std::string_view(values_[index]);
    }

    char const* cText(ServiceColumn column) const { return text(column).data(); }

    // When the text is no signed number: 0 where the row was made with a BadColumn, else
    // boost::bad_lexical_cast is thrown.
    std::int32_t number(ServiceColumn column) const {
        // Nearly every number of a row is one digit.
        char const* const value =
            strings_ == nullptr ? values_[static_cast<std::size_t>(column)] : nullptr;
        bool const isOneDigit =
            value != nullptr && value[0] >= '0' && value[0] <= '9' && value[1] == '\0';
        return isOneDigit ? value[0] - '0' : convertedNumber(column);
    }

    bool isSet(ServiceColumn column) const { return number(column) != 0; }

  private:
    std::int32_t convertedNumber(ServiceColumn column) const;

    std::size_t size_;
    char const* const* values_ = nullptr;
    std::string const* strings_ = nullptr;  // in their place
    BadColumn badColumn_ = nullptr;
};

}  // namespace channellist

#endif
