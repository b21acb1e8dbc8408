// The texts of the two temporary views. They are exact to the character: a view that exists already
// is kept, so a changed text would take effect at different times in different processes.
#ifndef CHANNELLIST_DB_ACCESS_SERVICE_VIEWS_SQL_H
#define CHANNELLIST_DB_ACCESS_SERVICE_VIEWS_SQL_H

#include <string_view>

namespace channellist {

// clang-format off

// UriView: one tuning URI a service, chosen by its delivery kind (Service.Type). A piece that is
// absent for 0 is a CASE on its column. Any null that a branch concatenates makes the URI null.
inline constexpr char kUriViewHead[] =
    "CREATE TEMP VIEW IF NOT EXISTS UriView AS SELECT Pid, ";

inline constexpr char kUriExpression[] =
    "( case Service.Type"
    " when 0 then Service.Uri"
    " when 5 then 'rec://plain/dvbip?url='"
        " || case (select count(*) from dvbservice where ServiceId=Service.Pid)"
            " when 0 then case (Service.Uri is null) when 1 then '' else Service.Uri end"
            " else (select NetworkUrl from dvbservice, dvbiptuner where Service.Pid=dvbservice.ServiceId"
                " and dvbservice.TunerId= DvbIpTuner.TunerId) end"
        " || '&frontend=5'"
        " || (select case CiSlotConfig when 0 then '' else '&slotconfig=' || CiSlotConfig end"
        " || '&onid=' || Oid || '&sid=' || Sid || '&tsid=' || Tid"
        " || case Encrypted when 0 then '' else '&encrypted=1' end"
        " from dvbservice, tuner, DvbIpTuner"
        " where Service.Pid=ServiceId and dvbservice.TunerId=tuner.TunerId"
        " and DvbIpTuner.TunerId=tuner.TunerId)"
    " when 1 then (select 'rec://plain/analog?frequency=' || Frequency"
        " || '&brdstd=' || BroadcastSystem || '&colstd=' || ColorSystem || '&frontend=' || Type"
        " from analogservice where Service.Pid=ServiceId)"
    " when 2 then (select 'rec://plain/dvbt?frontend=' || Frontend"
        " || '&dvbtpriority='|| HierarchicalPriority || '&frequency=' || Frequency"
        " || case Bandwidth when 0 then '' else '&bandwidth=' || Bandwidth end"
        " || case SpectrumInversion when 0 then '' else '&inversion=' || SpectrumInversion end"
        " || case Constellation when 0 then '' else '&modulation=' ||  Constellation end"
        " || case CiSlotConfig when 0 then '' else '&slotconfig=' || CiSlotConfig end"
        " || '&onid=' || Oid || '&sid=' || Sid || '&tsid=' || Tid || '&nid='  || NITId"
        " || case Encrypted when 0 then '' else '&encrypted=1' end"
        " from dvbservice, tuner, dvbttuner"
        " where Service.Pid=ServiceId and Tuner.tunerId=dvbservice.TunerId"
        " and dvbservice.TunerId=dvbttuner.TunerId)"
    " when 6 then (select 'rec://plain/dvbt?frontend=' || Frontend"
        " || '&plpid=' || (PlpId & 0xFF) || '&groupid=' || ((PlpId >> 8) & 0xFF)"
        " || '&frequency=' || Frequency"
        " || case Bandwidth when 0 then '' else '&bandwidth=' || Bandwidth end"
        " || case SpectrumInversion when 0 then '' else '&inversion=' || SpectrumInversion end"
        " || case Constellation when 0 then '' else '&modulation=' ||  Constellation end"
        " || case CiSlotConfig when 0 then '' else '&slotconfig=' || CiSlotConfig end"
        " || '&onid=' || Oid || '&sid=' || Sid || '&tsid=' || Tid || '&nid='  || NITId"
        " || case Encrypted when 0 then '' else '&encrypted=1' end"
        " from dvbservice, tuner, dvbt2tuner"
        " where Service.Pid=ServiceId and Tuner.tunerId=dvbservice.TunerId"
        " and dvbservice.TunerId=dvbt2tuner.TunerId)"
    " when 3 then (select 'rec://plain/dvbc?frontend=' || Frontend"
        " || '&frequency=' || Frequency"
        " || case SymbolRate when 0 then '' else '&symbolrate=' || SymbolRate end"
        " || case SpectrumInversion when 0 then '' else '&inversion=' || SpectrumInversion end"
        " || case Modulation when 0 then '' else '&modulation=' || Modulation end"
        " || case CiSlotConfig when 0 then '' else '&slotconfig=' || CiSlotConfig end"
        " || '&onid=' || Oid || '&sid=' || Sid || '&tsid=' || Tid || '&nid='  || NITId"
        " || case Encrypted when 0 then '' else '&encrypted=1' end"
        " from dvbservice, tuner, dvbctuner"
        " where Service.Pid=ServiceId and Tuner.tunerId=dvbservice.TunerId"
        " and dvbservice.TunerId=dvbctuner.TunerId)"
    " when 7 then (select 'rec://plain/dvbc?frontend=' || Frontend || '&plpid=' || PlpId"
        " || '&datasliceid=' || DataSliceId || '&frequency=' || Frequency"
        " || case Bandwidth when 0 then '' else '&bandwidth=' || Bandwidth end"
        " || case SpectrumInversion when 0 then '' else '&inversion=' || SpectrumInversion end"
        " || case CiSlotConfig when 0 then '' else '&slotconfig=' || CiSlotConfig end"
        " || '&onid=' || Oid || '&sid=' || Sid || '&tsid=' || Tid || '&nid='  || NITId"
        " || case Encrypted when 0 then '' else '&encrypted=1' end"
        " from dvbservice, tuner, dvbc2tuner"
        " where Service.Pid=ServiceId and Tuner.tunerId=dvbservice.TunerId"
        " and dvbservice.TunerId=dvbc2tuner.TunerId)"
    " when 4 then (select 'rec://plain/dvbs?frontend=' || Frontend || '&satid=' || Satellite"
        " || '&coderate=' || CodeRate || '&frequency=' || Frequency"
        " || case SymbolRate when 0 then '' else '&symbolrate=' || SymbolRate end"
        " || case SpectrumInversion when 0 then '' else '&inversion=' || SpectrumInversion end"
        " || case Modulation when 0 then '' else '&modulation=' || Modulation end"
        " || case Polarization when 0 then '' else '&polarization=' || Polarization end"
        " || case Band when 0 then '' else '&band=' || Band end"
        " || case CiSlotConfig when 0 then '' else '&slotconfig=' || CiSlotConfig end"
        " || '&onid=' || Oid || '&sid=' || Sid || '&tsid=' || Tid || '&nid='  || NITId"
        " || case Encrypted when 0 then '' else '&encrypted=1' end"
        " from dvbservice, tuner, dvbstuner"
        " where Service.Pid=ServiceId and Tuner.tunerId=dvbservice.TunerId"
        " and dvbservice.TunerId=dvbstuner.TunerId)"
    " when 8 then (select 'rec://plain/dvbs?frontend=' || Frontend || '&satid=' || Satellite"
        " || '&modcod=' || ModulationCoding || '&frequency=' || Frequency"
        " || case SymbolRate when 0 then '' else '&symbolrate=' || SymbolRate end"
        " || case SpectrumInversion when 0 then '' else '&inversion=' || SpectrumInversion end"
        " || case Polarization when 0 then '' else '&polarization=' || Polarization end"
        " || case Band when 0 then '' else '&band=' || Band end"
        " || case CiSlotConfig when 0 then '' else '&slotconfig=' || CiSlotConfig end"
        " || '&onid=' || Oid || '&sid=' || Sid || '&tsid=' || Tid || '&nid='  || NITId"
        " || case Encrypted when 0 then '' else '&encrypted=1' end"
        " from dvbservice, tuner, dvbs2tuner"
        " where Service.Pid=ServiceId and Tuner.tunerId=dvbservice.TunerId"
        " and dvbservice.TunerId=dvbs2tuner.TunerId)"
    " else 'about:blank' end ) AS Uri";

inline constexpr char kUriViewTail[] = " FROM Service;";

// FavoriteItemView: one flat row per item whose service is an analogue or a DVB service.
inline constexpr char kFavoriteItemViewHead[] =
    "CREATE TEMP VIEW IF NOT EXISTS FavoriteItemView AS SELECT "
    "Pid,ChannelNum,"
    "CASE WHEN ShortName IS NOT NULL AND ShortName<>'' THEN ShortName ELSE Name END"
        " AS InternalName,"
    "CASE WHEN ServiceName IS NOT NULL AND ServiceName<>'' THEN ServiceName"
        " WHEN Name='hdmi1' THEN 'HDMI 1' WHEN Name='hdmi2' THEN 'HDMI 2'"
        " WHEN Name='hdmi3' THEN 'HDMI 3' WHEN Name='hdmi4' THEN 'HDMI 4'"
        " WHEN Name='AV1' THEN 'AV' WHEN Name='ANALOG' THEN 'VIDEO'"
        " WHEN ShortName IS NOT NULL AND ShortName<>'' THEN ShortName ELSE Name END"
        " AS ExternalName,"
    "FavoriteItem.Visible AS FIVisible,FavoriteItem.Selectable AS FISelectable,"
    "(SELECT NetworkId from FavoriteList where OriginalFavoriteId=FavoriteList.Pid)"
        " AS NetworkId,"
    "Uuid,";

inline constexpr char kFavoriteItemViewUri[] =
    "( select Uri from UriView where UriView.Pid=Service.Pid ) AS Uri";

inline constexpr char kFavoriteItemViewTail[] =
    ","
    "Encrypted,MediaType,ParentalLock,Service.Visible AS SVisible,Service.Selectable"
        " AS SSelectable,"
    "EpgService,EngineAutoStart,VolumeCorrection,SoundSelection,GamingMode,Hdtv,"
    "case when Type=1 then AnalogService.TtxPreviewPage else DvbService.TtxPreviewPage END"
        " AS TtxPreviewPage,"
    "case when Type=1 then AnalogService.TtxSubtitlePage else DvbService.TtxSubtitlePage END"
        " AS TtxSubtitlePage,"
    "case when Type=1 then AnalogService.TtxCharEnc else DvbService.TtxCharEnc END"
        " AS TtxCharEnc,"
    "CreationSession,ModificationSession,FavoriteId,isDeleted,IsReceivable, Protected,"
    "FavTag,FavTag2,FavTag3,FavTag4,"
    "HbbtvEnable,NITVersion,BATVersion,SDTVersion,"
    "(SELECT NITId from Tuner where DvbService.TunerId=Tuner.TunerId) AS NITId,"
    "Type,"
    "(SELECT TunerUuid from Tuner where DvbService.TunerId=Tuner.TunerId) AS TunerUuid,"
    "(SELECT Lcn from Lcn where Pid=Lcn.ServiceId) AS Lcn"
    " FROM Service,FavoriteItem"
    " LEFT JOIN AnalogService ON Pid=AnalogService.ServiceId"
    " LEFT JOIN DvbService on Pid=DvbService.ServiceId"
    " WHERE FavoriteItem.ServiceId=Pid AND ( ( Pid IN (SELECT ServiceId FROM AnalogService) )"
        " OR ( Pid IN (SELECT ServiceId FROM DvbService) ) )";

// clang-format on

static_assert(std::string_view(kUriViewHead).size() == 54);
static_assert(std::string_view(kUriExpression).size() == 5388);
static_assert(std::string_view(kFavoriteItemViewHead).size() == 686);
static_assert(std::string_view(kFavoriteItemViewUri).size() == 64);
static_assert(std::string_view(kFavoriteItemViewTail).size() == 1113);

}  // namespace channellist

#endif
