#include "dbservice_query_result/raw_service_row.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <optional>
#include <typeinfo>

#include "support/number_text.h"

namespace channellist {

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
