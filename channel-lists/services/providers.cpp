#include "services/providers.h"

#include <channellist-access/db_access.h>

#include "database/query.h"
#include "failure.h"

namespace channel_lists {

bool hasProviders() {
    return queryNumber(db,
                       "SELECT count(*) FROM pragma_table_info('Service')"
                       " WHERE name = 'Provider' COLLATE NOCASE") != 0;
}

std::map<unsigned int, std::string> readProviders() {
    if (!hasProviders())
        throw Failure("the database does not tell who broadcasts a service");
    std::map<unsigned int, std::string> providers;
    Query rows(db, "SELECT Pid, Provider FROM Service");
    while (rows.next())
        providers.emplace(static_cast<unsigned int>(rows.number(0)), rows.text(1));
    return providers;
}

}  // namespace channel_lists
