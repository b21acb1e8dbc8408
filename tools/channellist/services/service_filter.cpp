#include "services/service_filter.h"

#include <channellist-access/field_ids.h>

#include <algorithm>
#include <tuple>

#include "failure.h"
#include "output/folded_text.h"
#include "output/json_text.h"
#include "services/service_words.h"

namespace tool {
namespace {

std::int64_t numberIn(ResultRow const& service, ServiceField field) {
    return wholeNumber(service[field]).value_or(0);
}

bool fits(ResultRow const& service, ServiceFilter const& filter) {
    std::string const kind = kindOf(service);
    unsigned int const attributes = attributesOf(service);
    bool const isHidden = isDeleted(service) || service[SERVICE_FIELD_VISIBLE] == "0";
    return (!(filter.tv || filter.radio) || (filter.tv && kind == "TV") ||
            (filter.radio && kind == "radio")) &&
           (!filter.hd || (attributes & kHighDefinition) != 0) &&
           (!filter.free || (attributes & kScrambled) == 0) && (!filter.hidden || isHidden) &&
           (filter.delivery.empty() || deliveryOf(service) == filter.delivery) &&
           folded(service[SERVICE_FIELD_CAPTION]).find(folded(filter.match)) != std::string::npos;
}

bool isBefore(ResultRow const& a, ResultRow const& b, std::string const& order) {
    auto const numberOf = [](ResultRow const& row) {
        return numberIn(row, SERVICE_FIELD_CHANNEL_NUMBER);
    };
    auto const tripletOf = [](ResultRow const& row) {
        return std::make_tuple(numberIn(row, SERVICE_FIELD_ORIGINAL_NETWORK_ID),
                               numberIn(row, SERVICE_FIELD_TRANSPORT_STREAM_ID),
                               numberIn(row, SERVICE_FIELD_SERVICE_ID));
    };
    if (order == "name")
        return folded(a[SERVICE_FIELD_CAPTION]) < folded(b[SERVICE_FIELD_CAPTION]);
    return order == "triplet" ? tripletOf(a) < tripletOf(b) : numberOf(a) < numberOf(b);
}

void check(char const* option, std::string const& word, std::vector<std::string> const& words) {
    if (!word.empty() && std::find(words.begin(), words.end(), word) == words.end())
        throw Failure(
            std::string(option) + " takes one of " + joined(words) + ", not '" + word + "'",
            kUsage);
}

}  // namespace

bool ServiceFilter::isSet() const {
    return tv || radio || hd || free || hidden || !delivery.empty() || !match.empty() ||
           !sort.empty();
}

std::vector<ResultRow> filtered(std::vector<ResultRow> services, ServiceFilter const& filter) {
    check("--delivery", filter.delivery, {"satellite", "cable", "terrestrial", "analogue", "IP"});
    check("--sort", filter.sort, {"number", "name", "triplet"});
    services.erase(std::remove_if(services.begin(), services.end(),
                                  [&](ResultRow const& row) { return !fits(row, filter); }),
                   services.end());
    if (!filter.sort.empty()) {
        std::stable_sort(
            services.begin(), services.end(),
            [&](ResultRow const& a, ResultRow const& b) { return isBefore(a, b, filter.sort); });
    }
    return services;
}

}  // namespace tool
