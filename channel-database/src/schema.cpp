#include <channel-database/schema.h>

#include <stdexcept>
#include <string>

namespace channel_database {
namespace {

// clang-format off
constexpr char kTables[] = R"sql(
CREATE TABLE IF NOT EXISTS Service (
    Pid                 INTEGER PRIMARY KEY,
    Type                INTEGER DEFAULT 0,
    Uri                 TEXT,
    Uuid                TEXT,
    Name                TEXT,
    ShortName           TEXT    DEFAULT '',
    ServiceName         TEXT    DEFAULT '',
    Encrypted           INTEGER DEFAULT 0,
    MediaType           INTEGER DEFAULT 1,
    Visible             INTEGER DEFAULT 1,
    Selectable          INTEGER DEFAULT 1,
    ParentalLock        INTEGER DEFAULT 0,
    EpgService          INTEGER DEFAULT 0,
    EngineAutoStart     INTEGER DEFAULT 0,
    VolumeCorrection    INTEGER DEFAULT 0,
    SoundSelection      INTEGER DEFAULT 0,
    GamingMode          INTEGER DEFAULT 0,
    Hdtv                INTEGER DEFAULT 0,
    CreationSession     INTEGER DEFAULT 0,
    ModificationSession INTEGER DEFAULT 0,
    IsReceivable        INTEGER DEFAULT 1,
    Protected           INTEGER DEFAULT 0,
    HbbtvEnable         INTEGER DEFAULT 0,
    NITVersion          INTEGER DEFAULT 0,
    BATVersion          INTEGER DEFAULT 0,
    SDTVersion          INTEGER DEFAULT 0,
    FavTag              INTEGER DEFAULT 0,
    FavTag2             INTEGER DEFAULT 0,
    FavTag3             INTEGER DEFAULT 0,
    FavTag4             INTEGER DEFAULT 0,
    bissKey             TEXT
);

CREATE TABLE IF NOT EXISTS AnalogService (
    ServiceId       INTEGER PRIMARY KEY,
    TtxPreviewPage  INTEGER DEFAULT 0,
    TtxSubtitlePage INTEGER DEFAULT 0,
    TtxCharEnc      INTEGER DEFAULT 0,
    Frequency       INTEGER DEFAULT 0,
    BroadcastSystem INTEGER DEFAULT 0,
    ColorSystem     INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbService (
    ServiceId       INTEGER PRIMARY KEY,
    TunerId         INTEGER,
    TtxPreviewPage  INTEGER DEFAULT 0,
    TtxSubtitlePage INTEGER DEFAULT 0,
    TtxCharEnc      INTEGER DEFAULT 0,
    Oid             INTEGER DEFAULT 0,
    Tid             INTEGER DEFAULT 0,
    Sid             INTEGER DEFAULT 0,
    CiSlotConfig    INTEGER DEFAULT 0,
    NetworkUrl      TEXT    DEFAULT ''
);

CREATE TABLE IF NOT EXISTS Tuner (
    TunerId   INTEGER PRIMARY KEY,
    TunerUuid TEXT,
    NITId     INTEGER DEFAULT 0,
    Frontend  INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbTTuner (
    TunerId              INTEGER PRIMARY KEY,
    Frequency            INTEGER DEFAULT 0,
    Bandwidth            INTEGER DEFAULT 0,
    SpectrumInversion    INTEGER DEFAULT 0,
    Constellation        INTEGER DEFAULT 0,
    HierarchicalPriority INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbT2Tuner (
    TunerId           INTEGER PRIMARY KEY,
    Frequency         INTEGER DEFAULT 0,
    Bandwidth         INTEGER DEFAULT 0,
    SpectrumInversion INTEGER DEFAULT 0,
    Constellation     INTEGER DEFAULT 0,
    PlpId             INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbCTuner (
    TunerId           INTEGER PRIMARY KEY,
    Frequency         INTEGER DEFAULT 0,
    SymbolRate        INTEGER DEFAULT 0,
    SpectrumInversion INTEGER DEFAULT 0,
    Modulation        INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbC2Tuner (
    TunerId           INTEGER PRIMARY KEY,
    Frequency         INTEGER DEFAULT 0,
    Bandwidth         INTEGER DEFAULT 0,
    SpectrumInversion INTEGER DEFAULT 0,
    PlpId             INTEGER DEFAULT 0,
    DataSliceId       INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbSTuner (
    TunerId           INTEGER PRIMARY KEY,
    Satellite         INTEGER DEFAULT 0,
    Frequency         INTEGER DEFAULT 0,
    SymbolRate        INTEGER DEFAULT 0,
    SpectrumInversion INTEGER DEFAULT 0,
    Modulation        INTEGER DEFAULT 0,
    CodeRate          INTEGER DEFAULT 0,
    Polarization      INTEGER DEFAULT 0,
    Band              INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbS2Tuner (
    TunerId           INTEGER PRIMARY KEY,
    Satellite         INTEGER DEFAULT 0,
    Frequency         INTEGER DEFAULT 0,
    SymbolRate        INTEGER DEFAULT 0,
    SpectrumInversion INTEGER DEFAULT 0,
    ModulationCoding  INTEGER DEFAULT 0,
    Polarization      INTEGER DEFAULT 0,
    Band              INTEGER DEFAULT 0
);

CREATE TABLE IF NOT EXISTS DvbIpTuner (
    TunerId INTEGER PRIMARY KEY
);

CREATE TABLE IF NOT EXISTS FavoriteList (
    Pid              INTEGER PRIMARY KEY,
    Uuid             TEXT,
    Name             TEXT,
    Creator          TEXT,
    Attributes       INTEGER DEFAULT 0,
    NetworkId        INTEGER DEFAULT 0,
    BATId            INTEGER DEFAULT 0,
    UpdateTag        INTEGER DEFAULT 0,
    MaxChannelNumber INTEGER DEFAULT 0
);

-- -1 leaves the decision to the service's own flag, so that a newly added favourite shows.
CREATE TABLE IF NOT EXISTS FavoriteItem (
    Id                 INTEGER PRIMARY KEY,
    ServiceId          INTEGER,
    FavoriteId         INTEGER,
    OriginalFavoriteId INTEGER,
    ChannelNum         INTEGER DEFAULT 0,
    isDeleted          INTEGER DEFAULT 0,
    Visible            INTEGER DEFAULT -1,
    Selectable         INTEGER DEFAULT -1
);

-- No column Pid here: the views look up the Pid of the service around this table.
CREATE TABLE IF NOT EXISTS Lcn (
    ServiceId  INTEGER,
    FavoriteId INTEGER,
    Lcn        INTEGER
);
)sql";

constexpr char kIndexes[] = R"sql(
CREATE INDEX IF NOT EXISTS ServiceByUuid      ON Service (Uuid);
CREATE INDEX IF NOT EXISTS ServiceByTuner     ON DvbService (TunerId);
CREATE INDEX IF NOT EXISTS SatelliteFrequency ON DvbSTuner (Satellite, Frequency);
CREATE INDEX IF NOT EXISTS ListByUuid         ON FavoriteList (Uuid);
-- LIKE ignores case, so only an index that does the same serves it.
CREATE INDEX IF NOT EXISTS ListByCreator      ON FavoriteList (Creator COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS ItemByChannel      ON FavoriteItem (FavoriteId, ChannelNum);
CREATE INDEX IF NOT EXISTS ItemByService      ON FavoriteItem (ServiceId, FavoriteId);
-- The first row of a service is its number: the index holds no further column to reorder them.
CREATE INDEX IF NOT EXISTS LcnByService       ON Lcn (ServiceId);
CREATE INDEX IF NOT EXISTS LcnByList          ON Lcn (FavoriteId);
)sql";
// clang-format on

void execute(sqlite3* database, char const* sql) {
    if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(std::string("cannot create the tables: ") +
                                 sqlite3_errmsg(database));
    }
}

}  // namespace

void createSchema(sqlite3* database, Indexes indexes) {
    execute(database, kTables);
    if (indexes == Indexes::Recommended)
        execute(database, kIndexes);
}

}  // namespace channel_database
