#include "dbservice_query_result/raw_service_row.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <optional>
#include <typeinfo>

#include "support/number_text.h"

namespace channellist {

namespace {

// Most columns are a digit: a call of strlen for each would cost more than a look at it.
std::string_view textOf(char const* value) {
    if (value == nullptr)
        return "";
    if (value[0] != '\0' && value[1] == '\0')
        return std::string_view(value, 1);
    return value;
}

}  // namespace

RawServiceRow::RawServiceRow(int count, char const* const* values, BadColumn badColumn)
    : texts_(count > 0 ? static_cast<std::size_t>(count) : 0), badColumn_(badColumn) {
    for (std::string_view& text : texts_)
        text = textOf(*values++);
}

std::int32_t RawServiceRow::convertedNumber(ServiceColumn column) const {
    std::optional<std::int32_t> const value = signedNumber(text(column));
    if (value)
        return *value;
    if (badColumn_ == nullptr)
        throw boost::bad_lexical_cast(typeid(std::string), typeid(int));
    badColumn_(*this, column);
    return 0;
}

}  // namespace channellist
