#include "services/service_words.h"

#include <channellist-access/field_ids.h>

#include <cstdlib>

namespace tool {
namespace {

constexpr unsigned int kFavourite[] = {0x200000, 0x800000, 0x1000000, 0x2000000};
constexpr unsigned long kRadio = 2;  // item type

// By frontend class; the inputs begin at 6.
constexpr const char* kDeliveries[] = {"", "analogue", "terrestrial", "cable", "satellite", "IP"};
constexpr const char* kInputs[] = {"HDMI", "SCART", "AVS", "VGA", "S/PDIF"};

std::size_t frontendClass(const ResultRow& service) {
    return std::strtoul(service[SERVICE_FIELD_FRONTEND_CLASS].c_str(), nullptr, 10);
}

}  // namespace

unsigned int attributesOf(const ResultRow& service) {
    return static_cast<unsigned int>(
        std::strtoul(service[SERVICE_FIELD_ATTRIBUTES].c_str(), nullptr, 10));
}

bool isDeleted(const ResultRow& service) { return (attributesOf(service) & kNotDeleted) == 0; }

std::string kindOf(const ResultRow& service) {
    const std::size_t input = frontendClass(service) - std::size(kDeliveries);
    if (input < std::size(kInputs)) {
        return kInputs[input];
    }
    const std::string& type = service[SERVICE_FIELD_ITEM_TYPE];
    return std::strtoul(type.c_str(), nullptr, 10) == kRadio ? "radio" : "TV";
}

std::string deliveryOf(const ResultRow& service) {
    const std::size_t delivery = frontendClass(service);
    return delivery < std::size(kDeliveries) ? kDeliveries[delivery] : "";
}

std::vector<std::string> statesOf(const ResultRow& service) {
    const unsigned int attributes = attributesOf(service);
    const struct {
        bool applies;
        const char* word;
    } states[] = {
        {isDeleted(service), "deleted"},
        {service[SERVICE_FIELD_VISIBLE] == "0", "hidden"},
        {service[SERVICE_FIELD_SELECTABLE] == "0", "not selectable"},
        {(attributes & kScrambled) != 0, "scrambled"},
        {(attributes & kLocked) != 0, "locked"},
        {(attributes & kProtected) != 0, "protected"},
    };
    std::vector<std::string> words;
    for (const auto& state : states) {
        if (state.applies) {
            words.emplace_back(state.word);
        }
    }
    return words;
}

std::vector<std::string> favouritesOf(const ResultRow& service) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::size(kFavourite); ++i) {
        if ((attributesOf(service) & kFavourite[i]) != 0) {
            names.push_back("FAV" + std::to_string(i + 1));
        }
    }
    return names;
}

std::string joined(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : separator) + word;
    }
    return text;
}

}  // namespace tool
