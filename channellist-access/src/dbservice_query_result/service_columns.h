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

// The name of a column as the query spells it. It walks by index: GCC's undefined-behaviour
// sanitizer refuses pointer searches in a constant expression.
constexpr std::string_view serviceColumnName(ServiceColumn column) {
    std::size_t start = 0;
    for (std::size_t skipped = 0; skipped < static_cast<std::size_t>(column); ++start)
        if (kServiceColumnList[start] == ',')
            ++skipped;
    if (kServiceColumnList[start] == ' ')
        ++start;
    std::size_t end = start;
    while (kServiceColumnList[end] != ',' && kServiceColumnList[end] != '\0')
        ++end;
    return std::string_view(kServiceColumnList + start, end - start);
}

static_assert(kServiceColumnCount == 34);
static_assert(serviceColumnName(ServiceColumn::FavTag) == "FavTag");
static_assert(serviceColumnName(ServiceColumn::NITId) == "NITId");

}  // namespace channellist

#endif
