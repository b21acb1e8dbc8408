#include "dbservice_query_result/raw_service_row.h"

#include <optional>
#include <stdexcept>

#include "support/number_text.h"

namespace channellist {

RawServiceRow::RawServiceRow(std::vector<std::string> const& row) : row_(row) {
    if (row.size() < kServiceColumnCount)
        throw std::out_of_range("raw service row");
}

std::int32_t RawServiceRow::convertedNumber(ServiceColumn column) const {
    std::optional<std::int32_t> const value = signedNumber(text(column));
    if (!value)
        throw BadServiceColumn(column);
    return *value;
}

}  // namespace channellist
