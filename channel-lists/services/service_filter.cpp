#include "services/service_filter.h"

#include <channellist-access/field_ids.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <map>
#include <utility>

#include "failure.h"
#include "services/providers.h"
#include "services/service_words.h"
#include "text/display_text.h"
#include "text/folded_text.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

std::int64_t numberIn(ResultRow const& service, ServiceField field) {
    return wholeNumber(service[field]).value_or(0);
}

// Whole MHz, as lists of channels give them.
bool hasFrequency(ResultRow const& service, std::string const& megahertz) {
    constexpr std::int64_t kKilohertz = 1000;
    std::int64_t const stored = numberIn(service, SERVICE_FIELD_FREQUENCY);
    std::int64_t const wanted = wholeNumber(megahertz).value_or(0) * kKilohertz;
    return std::abs(stored - wanted) < kKilohertz;
}

bool isReceivedBy(ResultRow const& service, ServiceFilter const& filter) {
    return (filter.delivery.empty() || deliveryOf(service) == filter.delivery) &&
           (filter.satellite.empty() || service[SERVICE_FIELD_SATELLITE] == filter.satellite) &&
           (filter.network.empty() ||
            service[SERVICE_FIELD_ORIGINAL_NETWORK_ID] == filter.network) &&
           (filter.frequency.empty() || hasFrequency(service, filter.frequency));
}

bool fits(ResultRow const& service, ServiceFilter const& filter) {
    std::string const kind = kindOf(service);
    unsigned int const attributes = attributesOf(service);
    bool const isHidden = isDeleted(service) || service[SERVICE_FIELD_VISIBLE] == "0";
    return (!(filter.tv || filter.radio) || (filter.tv && kind == "TV") ||
            (filter.radio && kind == "radio")) &&
           (!filter.hd || (attributes & kHighDefinition) != 0) &&
           (!filter.free || (attributes & kScrambled) == 0) &&
           (!filter.scrambled || (attributes & kScrambled) != 0) && (!filter.hidden || isHidden) &&
           isReceivedBy(service, filter) &&
           (filter.match.empty() ||
            folded(service[SERVICE_FIELD_CAPTION]).find(folded(filter.match)) != std::string::npos);
}

// The numbers to sort by, or the name.
using SortKey = std::pair<std::array<std::int64_t, 3>, std::string>;

SortKey sortKey(ResultRow const& row, std::string const& order) {
    if (order == "name")
        return {{}, folded(row[SERVICE_FIELD_CAPTION])};
    if (order == "number")
        return {{numberIn(row, SERVICE_FIELD_CHANNEL_NUMBER), 0, 0}, ""};
    return {
        {numberIn(row, SERVICE_FIELD_ORIGINAL_NETWORK_ID),
         numberIn(row, SERVICE_FIELD_TRANSPORT_STREAM_ID), numberIn(row, SERVICE_FIELD_SERVICE_ID)},
        ""};
}

void sort(std::vector<ResultRow>& services, std::string const& order) {
    std::vector<std::pair<SortKey, ResultRow>> keyed;
    for (ResultRow& service : services) {
        SortKey key = sortKey(service, order);
        keyed.emplace_back(std::move(key), std::move(service));
    }
    std::stable_sort(
        keyed.begin(), keyed.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    std::transform(keyed.begin(), keyed.end(), services.begin(),
                   [](auto& each) { return std::move(each.second); });
}

// The one of `words` that `word` is, in whatever case; "" for "".
std::string known(char const* option, std::string const& word,
                  std::vector<std::string> const& words) {
    auto const found = std::find_if(words.begin(), words.end(), [&](std::string const& each) {
        return folded(each) == folded(word);
    });
    if (found != words.end() || word.empty())
        return word.empty() ? "" : *found;
    throw Failure(std::string(option) + " takes one of " + joined(words) + ", not '" + word + "'",
                  kUsage);
}

// A number that an option takes.
void checkNumber(char const* option, std::string const& word) {
    auto const number = wholeNumber(word);
    if (!word.empty() && (!number || std::abs(*number) > std::numeric_limits<std::int32_t>::max()))
        throw Failure(std::string(option) + " takes a number, not '" + word + "'", kUsage);
}

void keepProvider(std::vector<ResultRow>& services, std::string const& provider) {
    std::map<unsigned int, std::string> const providers = readProviders();
    auto const isOther = [&](ResultRow const& row) {
        auto const found =
            providers.find(static_cast<unsigned int>(numberIn(row, SERVICE_FIELD_PID)));
        return found == providers.end() ||
               folded(found->second).find(folded(provider)) == std::string::npos;
    };
    services.erase(std::remove_if(services.begin(), services.end(), isOther), services.end());
}

}  // namespace

bool ServiceFilter::isSet() const {
    return tv || radio || hd || free || scrambled || hidden || !sort.empty() ||
           !(delivery + satellite + network + frequency + provider + match).empty();
}

std::vector<ResultRow> filtered(std::vector<ResultRow> services, ServiceFilter filter) {
    filter.delivery = known("--delivery", filter.delivery,
                            {"satellite", "cable", "terrestrial", "analogue", "IP"});
    checkNumber("--satellite", filter.satellite);
    checkNumber("--network", filter.network);
    checkNumber("--frequency", filter.frequency);
    filter.sort = known("--sort", filter.sort, {"number", "name", "triplet"});
    services.erase(std::remove_if(services.begin(), services.end(),
                                  [&](ResultRow const& row) { return !fits(row, filter); }),
                   services.end());
    if (!filter.provider.empty())
        keepProvider(services, filter.provider);
    if (!filter.sort.empty())
        sort(services, filter.sort);
    return services;
}

}  // namespace channel_lists
