// The raw service row: the columns of the service query, by name.
#ifndef CHANNELLIST_DBSERVICE_QUERY_RESULT_SERVICE_COLUMNS_H
#define CHANNELLIST_DBSERVICE_QUERY_RESULT_SERVICE_COLUMNS_H

#include <cstddef>
#include <string_view>

namespace channellist {

// clang-format off

// The column list of the service query; ServiceColumn follows its order.
inline constexpr char kServiceColumnList[] =
    "Pid,ChannelNum,InternalName,ExternalName,FIVisible,FISelectable,NetworkId,Uuid"
    ",Uri,Encrypted,MediaType,ParentalLock,SVisible,SSelectable,EpgService"
    ",EngineAutoStart,VolumeCorrection,SoundSelection,GamingMode,Hdtv,TtxPreviewPage"
    ",TtxSubtitlePage,TtxCharEnc,Protected,TunerUuid,isDeleted, FavTag,FavTag2,FavTag3,FavTag4"
    ",HbbTvEnable,Type,Lcn,NITId";

enum class ServiceColumn : std::size_t {
    Pid, ChannelNum, InternalName, ExternalName, FIVisible, FISelectable, NetworkId, Uuid,
    Uri, Encrypted, MediaType, ParentalLock, SVisible, SSelectable, EpgService,
    EngineAutoStart, VolumeCorrection, SoundSelection, GamingMode, Hdtv, TtxPreviewPage,
    TtxSubtitlePage, TtxCharEnc, Protected, TunerUuid, isDeleted, FavTag, FavTag2, FavTag3, FavTag4,
    HbbTvEnable, Type, Lcn, NITId,
};

// clang-format on

inline constexpr std::size_t kServiceColumnCount =
    static_cast<std::size_t>(ServiceColumn::NITId) + 1;

// The name of a column as the query spells it.
constexpr std::string_view serviceColumnName(ServiceColumn column) {
    std::string_view list = kServiceColumnList;
    for (std::size_t skipped = 0; skipped < static_cast<std::size_t>(column); ++skipped)
        list.remove_prefix(list.find(',') + 1);
    list = list.substr(0, list.find(','));
    list.remove_prefix(list.find_first_not_of(' '));
    return list;
}

static_assert(kServiceColumnCount == 34);
static_assert(serviceColumnName(ServiceColumn::FavTag) == "FavTag");
static_assert(serviceColumnName(ServiceColumn::NITId) == "NITId");

}  // namespace channellist

#endif
