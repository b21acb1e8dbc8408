#include "dbservice_query_result/raw_service_row.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <optional>
#include <typeinfo>

#include "support/number_text.h"

namespace channellist {

std::int32_t RawServiceRow::convertedNumber(ServiceColumn column) const {
    std::string_view const digits = text(column);
    if (digits.size() == 1 && digits[0] >= '0' && digits[0] <= '9')  // in a row of strings
        return digits[0] - '0';
    std::optional<std::int32_t> const value = signedNumber(digits);
    if (value)
        return *value;
    if (badColumn_ == nullptr)
        throw boost::bad_lexical_cast(typeid(std::string), typeid(int));
    badColumn_(*this, column);
    return 0;
}

}  // namespace channellist
