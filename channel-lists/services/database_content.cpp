#include "services/database_content.h"

#include <channellist-access/field_ids.h>

#include <set>

#include "services/service_words.h"
#include "text/json_text.h"

namespace channel_lists {

DatabaseContent readAllLists() {
    DatabaseContent content;
    std::set<std::string> uuids;  // one that two lists have means the first
    for (List const& list : allLists()) {
        if (list.uuid.empty() || !uuids.insert(list.uuid).second)
            continue;
        Rows services = readServices(list.uuid);
        content.complete = content.complete && services.complete;
        content.lists.push_back({list, std::move(services.rows)});
    }
    return content;
}

std::map<std::int64_t, ServicePlaces> placesOfServices(std::vector<ListContentRows> const& lists) {
    std::map<std::int64_t, ServicePlaces> services;
    for (ListContentRows const& content : lists) {
        for (ResultRow const& row : content.rows) {
            ServicePlaces& found = services[wholeNumber(row[SERVICE_FIELD_PID]).value_or(0)];
            if (found.places.empty())
                found.service = row;
            found.places.push_back({displayName(content.list), content.list.uuid,
                                    row[SERVICE_FIELD_CHANNEL_NUMBER], isDeleted(row)});
        }
    }
    return services;
}

}  // namespace channel_lists
