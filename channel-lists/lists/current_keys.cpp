#include "lists/current_keys.h"

#include <channellist-access/db_access.h>

#include "database/query.h"

namespace channel_lists {

CurrentKeys::CurrentKeys() {
    waitWhileLocked([&] {
        // As C strings, which is how the library delivers them.
        Query services(db, "SELECT Pid, printf('%s', Uuid) FROM Service ORDER BY Pid");
        while (services.next()) {
            auto const key = static_cast<unsigned int>(services.number(0));
            current_.emplace(key, services.text(1));
            keys_.emplace(services.text(1), key);
        }
        return true;
    });
}

void CurrentKeys::giveTo(std::vector<Entry>& entries) {
    for (Entry& entry : entries) {
        if (entry.uuid.empty() || current_.count({entry.serviceId, entry.uuid}) != 0)
            continue;
        auto const [key, isNew] = keys_.emplace(entry.uuid, unused_);
        unused_ -= isNew ? 1 : 0;
        entry.serviceId = key->second;
    }
}

}  // namespace channel_lists
