// The folder query and the columns of its rows.
#ifndef CHANNELLIST_DB_ACCESS_FOLDER_QUERY_H
#define CHANNELLIST_DB_ACCESS_FOLDER_QUERY_H

#include <cstddef>
#include <string_view>

namespace channellist {

// clang-format off

// 32 is added to the attributes of a list with LCN rows, except in five networks. The order: kind of
// list; bouquet id within network 61; TV before radio without a network; name.
inline constexpr char kFolderQuery[] =
    "SELECT Pid,Uuid,Name,Creator,"
    "Attributes+(CASE WHEN (SELECT COUNT(*) FROM LCN WHERE FavoriteId=Pid)>0"
    " AND NetworkId<>14 AND NetworkId<>51 AND NetworkId<>68 AND NetworkId<>79 AND NetworkId<>80"
    " THEN 32 ELSE 0 END),NetworkId,UpdateTag"
    " FROM FavoriteList"
    " WHERE (creator<>'tamun.sl2.servicelist$all')"
    " and (creator NOT LIKE 'servicelist://tamun.dvbip%')"
    " ORDER BY CASE"
    " WHEN Creator LIKE 'servicelist://tamun.home%' THEN 0"
    " WHEN Creator LIKE 'servicelist://tamun.analog%' THEN 1"
    " WHEN Creator LIKE 'servicelist://tamun.dvbc%' THEN 3"
    " WHEN Creator LIKE 'servicelist://tamun.dvbt%' THEN 2"
    " WHEN Creator LIKE '%0x10000%' THEN 5"
    " WHEN Creator='tamun.sl2.servicelist$all' THEN 200"
    " WHEN Creator='tamun.sl2.servicelist$av' THEN 300"
    " WHEN Creator LIKE 'User.%' THEN 100+Pid"
    " ELSE 4 END,"
    " CASE WHEN NetworkId=61 THEN BATId ELSE 0 END,"
    " CASE WHEN NetworkId=-1 AND Creator LIKE 'servicelist://tamun.%.tv' THEN 0"
    " WHEN NetworkId=-1 AND Creator LIKE 'servicelist://tamun.%.radio' THEN 1"
    " ELSE 2 END,"
    " Name COLLATE NOCASE;";

// Its columns, in their order.
enum class FolderColumn : std::size_t { Pid, Uuid, Name, Creator, Attributes, NetworkId, UpdateTag };

// clang-format on

inline constexpr std::size_t kFolderColumnCount =
    static_cast<std::size_t>(FolderColumn::UpdateTag) + 1;

static_assert(std::string_view(kFolderQuery).size() == 986);

}  // namespace channellist

#endif
