// The two temporary views that the service query reads.
#include <channellist-access/db_access.h>

#include <array>

#include "db_access/service_views_sql.h"
#include "support/log.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// Joins literals into one at compile time, so that creating the views allocates nothing here.
template <std::size_t... Sizes>
constexpr auto joined(char const (&... pieces)[Sizes]) {
    std::array<char, (Sizes + ...) - sizeof...(Sizes) + 1> text{};
    std::size_t length = 0;
    auto const append = [&](char const* piece, std::size_t size) {
        for (std::size_t i = 0; i + 1 < size; ++i)
            text[length++] = piece[i];
    };
    (append(pieces, Sizes), ...);
    return text;
}

constexpr auto kCreateUriView = joined(kUriViewHead, kUriExpression, kUriViewTail);
constexpr auto kCreateFavoriteItemView =
    joined(kFavoriteItemViewHead, kFavoriteItemViewUri, kFavoriteItemViewTail);

int execute(sqlite3* connection, char const* sql) {
    return sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
}

}  // namespace
}  // namespace channellist

int dbaccess::initViews(sqlite3* connection) {
    using namespace channellist;
    // FavoriteItemView reads UriView, so it is not tried without it.
    int code = execute(connection, kCreateUriView.data());
    if (code != SQLITE_OK) {
        LOG_FORMAT(Error, "SQL ERROR res:%d.", code);
        return code;
    }
    code = execute(connection, kCreateFavoriteItemView.data());
    if (code != SQLITE_OK)
        LOG_FORMAT(Error, "SQL Error res:%d,sql:%s", code, kCreateFavoriteItemView.data());
    return code;
}
