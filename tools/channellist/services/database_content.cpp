#include "services/database_content.h"

#include <channellist-access/field_ids.h>

#include "output/json_text.h"
#include "services/service_words.h"

namespace tool {

std::vector<ListContentRows> readAllLists() {
    std::vector<ListContentRows> lists;
    for (List const& list : allLists())
        if (!list.uuid.empty())
            lists.push_back({list, readServices(list.uuid).rows});
    return lists;
}

std::map<std::int64_t, ServicePlaces> placesOfServices(std::vector<ListContentRows> const& lists) {
    std::map<std::int64_t, ServicePlaces> services;
    for (ListContentRows const& content : lists) {
        for (ResultRow const& row : content.rows) {
            ServicePlaces& found = services[wholeNumber(row[SERVICE_FIELD_PID]).value_or(0)];
            if (found.places.empty())
                found.service = row;
            found.places.push_back(displayName(content.list) + " " +
                                   row[SERVICE_FIELD_CHANNEL_NUMBER] +
                                   (isDeleted(row) ? " (hidden)" : ""));
        }
    }
    return services;
}

}  // namespace tool
