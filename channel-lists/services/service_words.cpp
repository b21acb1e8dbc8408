#include "services/service_words.h"

#include <channellist-access/field_ids.h>

#include <cstdlib>

#include "text/json_text.h"

namespace channel_lists {
namespace {

constexpr unsigned int kFavourite[] = {0x200000, 0x800000, 0x1000000, 0x2000000};
constexpr unsigned long kRadio = 2;  // item type

// By frontend class; the inputs begin at 6.
constexpr char const* kDeliveries[] = {"", "analogue", "terrestrial", "cable", "satellite", "IP"};
constexpr char const* kInputs[] = {"HDMI", "SCART", "AVS", "VGA", "S/PDIF"};

std::size_t frontendClass(ResultRow const& service) {
    return std::strtoul(service[SERVICE_FIELD_FRONTEND_CLASS].c_str(), nullptr, 10);
}

}  // namespace

unsigned int attributesOf(ResultRow const& service) {
    return static_cast<unsigned int>(
        std::strtoul(service[SERVICE_FIELD_ATTRIBUTES].c_str(), nullptr, 10));
}

bool isDeleted(ResultRow const& service) { return (attributesOf(service) & kNotDeleted) == 0; }

std::string kindOf(ResultRow const& service) {
    std::size_t const input = frontendClass(service) - std::size(kDeliveries);
    if (input < std::size(kInputs))
        return kInputs[input];
    std::string const& type = service[SERVICE_FIELD_ITEM_TYPE];
    return std::strtoul(type.c_str(), nullptr, 10) == kRadio ? "radio" : "TV";
}

std::string deliveryOf(ResultRow const& service) {
    std::size_t const delivery = frontendClass(service);
    return delivery < std::size(kDeliveries) ? kDeliveries[delivery] : "";
}

std::string tripletOf(ResultRow const& service) {
    std::string const triplet = service[SERVICE_FIELD_ORIGINAL_NETWORK_ID] + "-" +
                                service[SERVICE_FIELD_TRANSPORT_STREAM_ID] + "-" +
                                service[SERVICE_FIELD_SERVICE_ID];
    return triplet == "0-0-0" || triplet == "--" ? "" : triplet;
}

std::string tuningOf(ResultRow const& service) {
    constexpr std::int64_t kMegahertz = 1000;  // in kHz
    std::string text = deliveryOf(service);
    std::string const& satellite = service[SERVICE_FIELD_SATELLITE];
    if (!satellite.empty())
        text += (text.empty() ? "satellite " : " ") + satellite;
    std::int64_t const frequency = wholeNumber(service[SERVICE_FIELD_FREQUENCY]).value_or(0);
    if (frequency > 0)
        text += (text.empty() ? "" : ", ") + std::to_string(frequency / kMegahertz) + " MHz";
    return text;
}

std::vector<std::string> statesOf(ResultRow const& service) {
    unsigned int const attributes = attributesOf(service);
    const struct {
        bool applies;
        char const* word;
    } states[] = {
        {isDeleted(service), "hidden"},
        {service[SERVICE_FIELD_VISIBLE] == "0", "invisible"},
        {service[SERVICE_FIELD_SELECTABLE] == "0", "not selectable"},
        {(attributes & kScrambled) != 0, "scrambled"},
        {(attributes & kLocked) != 0, "locked"},
        {(attributes & kProtected) != 0, "protected"},
    };
    std::vector<std::string> words;
    for (auto const& state : states)
        if (state.applies)
            words.emplace_back(state.word);
    return words;
}

std::vector<std::string> favouritesOf(ResultRow const& service) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::size(kFavourite); ++i)
        if ((attributesOf(service) & kFavourite[i]) != 0)
            names.push_back("FAV" + std::to_string(i + 1));
    return names;
}

}  // namespace channel_lists
