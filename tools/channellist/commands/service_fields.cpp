#include "commands/service_fields.h"

#include <channellist-access/field_ids.h>

#include <map>
#include <memory>
#include <optional>

#include "services/providers.h"
#include "services/service_words.h"
#include "text/display_text.h"

namespace tool {
namespace {

using Fields = std::vector<Field<ResultRow>>;

std::string separated(Json const& words) {
    return joined(words.get<std::vector<std::string>>(), " ");
}

// Asks the database once somebody wants to know.
class ProviderNames {
  public:
    std::string of(ResultRow const& service) {
        if (!names_)
            names_ = hasProviders() ? readProviders() : std::map<unsigned int, std::string>();
        auto const key = wholeNumber(service[SERVICE_FIELD_PID]).value_or(0);
        auto const name = names_->find(static_cast<unsigned int>(key));
        return name == names_->end() ? "" : name->second;
    }

  private:
    std::optional<std::map<unsigned int, std::string>> names_;
};

void add(Fields& fields, char const* key, Column column,
         std::function<Json(ResultRow const&)> value) {
    fields.push_back({key, std::move(column), std::move(value)});
}

void addNumber(Fields& fields, char const* key, Column column, ServiceField field) {
    column.align = Align::Right;
    add(fields, key, std::move(column),
        [field](ResultRow const& row) { return numberOrText(row[field]); });
}

void addText(Fields& fields, char const* key, Column column, ServiceField field) {
    add(
        fields, key, std::move(column), [field](ResultRow const& row) { return Json(row[field]); });
}

void addUsual(Fields& fields) {
    addNumber(fields, "number", {"No"}, SERVICE_FIELD_CHANNEL_NUMBER);
    addNumber(fields, "lcn", {"LCN", Align::Right, 1}, SERVICE_FIELD_LCN);
    addText(fields, "name", {"Name", Align::Left, kIsCut}, SERVICE_FIELD_CAPTION);
    add(fields, "kind", {"Kind", Align::Left, 8}, kindOf);
    add(fields, "delivery", {"Delivery", Align::Left, 5}, deliveryOf);
    addNumber(fields, "onid", {"ONID", Align::Right, 2}, SERVICE_FIELD_ORIGINAL_NETWORK_ID);
    addNumber(fields, "tsid", {"TSID", Align::Right, 3}, SERVICE_FIELD_TRANSPORT_STREAM_ID);
    addNumber(fields, "sid", {"SID", Align::Right, 4}, SERVICE_FIELD_SERVICE_ID);
    addNumber(fields, "id", {"Id", Align::Right, 7}, SERVICE_FIELD_PID);
    add(fields, "favourites", {"FAV", Align::Left, 6}, favouritesOf);
    fields.back().text = separated;
    add(fields, "state", {"State"}, statesOf);
}

void addOthers(Fields& fields) {
    add(
        fields, "hd", {"HD"},
        [](ResultRow const& row) { return (attributesOf(row) & kHighDefinition) != 0; });
    add(fields, "provider", {"Provider", Align::Left, kIsCut},
        [providers = std::make_shared<ProviderNames>()](ResultRow const& row) {
            return providers->of(row);
        });
    add(fields, "triplet", {"Triplet"}, tripletOf);
    addText(fields, "uuid", {"UUID"}, SERVICE_FIELD_UUID);
    addNumber(fields, "satellite", {"Satellite"}, SERVICE_FIELD_SATELLITE);
    addNumber(fields, "frequency", {"Frequency"}, SERVICE_FIELD_FREQUENCY);
    addNumber(fields, "symbolRate", {"Symbol rate"}, SERVICE_FIELD_SYMBOL_RATE);
    addNumber(fields, "polarization", {"Polarization"}, SERVICE_FIELD_POLARIZATION);
    addNumber(fields, "networkId", {"Network"}, SERVICE_FIELD_NETWORK_ID);
    addNumber(fields, "nitId", {"NIT"}, SERVICE_FIELD_NIT_ID);
    addText(fields, "tunerUuid", {"Tuner"}, SERVICE_FIELD_TUNER_UUID);
    addNumber(fields, "ciSlot", {"CI slot"}, SERVICE_FIELD_CI_SLOT);
    addNumber(fields, "previewPage", {"Preview page"}, SERVICE_FIELD_PREVIEW_PAGE);
    addNumber(fields, "subtitlePage", {"Subtitle page"}, SERVICE_FIELD_SUBTITLE_PAGE);
    addNumber(fields, "encoding", {"Encoding"}, SERVICE_FIELD_ENCODING);
    addNumber(fields, "attributes", {"Attributes"}, SERVICE_FIELD_ATTRIBUTES);
}

}  // namespace

std::vector<Field<ResultRow>> serviceFields() {
    Fields fields;
    addUsual(fields);
    std::size_t const usual = fields.size();
    addOthers(fields);
    for (std::size_t i = usual; i < fields.size(); ++i)
        fields[i].isUsual = false;
    return fields;
}

}  // namespace tool
