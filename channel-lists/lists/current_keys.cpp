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
    for (Entry& entry : entries)
        entry.serviceId = keyOf(entry.serviceId, entry.uuid);
}

void CurrentKeys::giveTo(std::vector<StoredItem>& items) {
    for (StoredItem& item : items)
        item.service = keyOf(static_cast<unsigned int>(item.service), item.uuid);
}

unsigned int CurrentKeys::keyOf(unsigned int key, std::string const& uuid) {
    if (uuid.empty() || current_.count({key, uuid}) != 0)
        return key;
    auto const [current, isNew] = keys_.emplace(uuid, unused_);
    unused_ -= isNew ? 1 : 0;
    return current->second;
}

}  // namespace channel_lists
