// The attribute word of one list, which decides the order of its services.
#include "db_access/callback_value.h"
#include "db_access/session.h"
#include "db_access/sql_literal.h"

namespace channellist {
namespace {
constexpr LogModule kLogModule = LogModule::DatabaseAccess;
}
}  // namespace channellist

using namespace channellist;

int dbaccess::getFavriteAttributes(std::string favoriteUuId, unsigned int* attributes) {
    LOG_FORMAT(Trace, "called,favoriteUuId:%s ", favoriteUuId.c_str());
    if (openChannelDatabase(CALL_SITE, kLogModule) != SQLITE_OK)
        return kFailed;
    std::string const sql =
        "SELECT Attributes FROM FavoriteList WHERE Uuid = " + sqlLiteral(favoriteUuId) + ";";
    char* error = nullptr;
    return sqlexec(db, sql.c_str(), attributesCallback, attributes, &error);
}

int dbaccess::attributesCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    return storeUnsigned(values, *static_cast<unsigned int*>(context));
}
