#include "compare/compared_content.h"

#include <channellist-access/field_ids.h>

#include "services/database_content.h"
#include "services/service_words.h"

namespace channel_lists {
namespace {

constexpr struct {
    ServiceField field;
    char const* before;
    char const* behind;
} kTransponder[] = {{SERVICE_FIELD_SATELLITE, " ", ""},
                    {SERVICE_FIELD_FREQUENCY, " ", " kHz"},
                    {SERVICE_FIELD_POLARIZATION, " polarization ", ""},
                    {SERVICE_FIELD_SYMBOL_RATE, " ", " kBd"},
                    {SERVICE_FIELD_ORIGINAL_NETWORK_ID, " ", ""},
                    {SERVICE_FIELD_TRANSPORT_STREAM_ID, "-", ""}};

std::string transponderOf(ResultRow const& row) {
    std::string text = deliveryOf(row);
    for (auto const& part : kTransponder)
        if (!row[part.field].empty())
            text += part.before + row[part.field] + part.behind;
    return text;
}

}  // namespace

ComparedContent readForComparison() {
    DatabaseContent const database = readAllLists();
    ComparedContent content;
    content.complete = database.complete;
    for (ListContentRows const& each : database.lists) {
        ListEntries list{each.list.uuid, displayName(each.list), {}, each.list.favIndex != 0};
        for (ResultRow const& row : each.rows) {
            Entry const entry = entryOf(row);
            content.services[entry.serviceId] = {entry.uuid,  entry.triplet,   entry.name,
                                                 kindOf(row), deliveryOf(row), transponderOf(row)};
            list.entries.push_back(entry);
        }
        content.lists.push_back(std::move(list));
    }
    return content;
}

}  // namespace channel_lists
