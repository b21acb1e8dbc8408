/// @file
/// The small integers that name the columns of a result row.
#ifndef CHANNELLIST_ACCESS_FIELD_IDS_H
#define CHANNELLIST_ACCESS_FIELD_IDS_H

#include <channellist-access/export.h>

#include <string>
#include <vector>

/// Columns of a service row, see m_svfield. "URI number" is the named parameter of the tuning URI
/// read by `strtol` in base 10, saturated at the signed 32-bit range, or the empty text when the
/// URI lacks it. An id that is not listed gives the empty text.
enum ServiceField {
    SERVICE_FIELD_CAPTION = 0,               ///< display name
    SERVICE_FIELD_ROW_NUMBER = 1,            ///< running number, see m_selectedServiceListId
    SERVICE_FIELD_ATTRIBUTES = 3,            ///< completed attribute word, unsigned decimal
    SERVICE_FIELD_FRONTEND_CLASS = 4,        ///< 0 to 10, see dbaccess::computeService
    SERVICE_FIELD_SATELLITE = 5,             ///< URI number of "satid"
    SERVICE_FIELD_CHANNEL_NUMBER = 6,        ///< channel number in the list, as stored
    SERVICE_FIELD_UUID = 7,                  ///< identity of the service
    SERVICE_FIELD_SERVICE_ID = 8,            ///< DVB service id, URI number of "sid"
    SERVICE_FIELD_TRANSPORT_STREAM_ID = 9,   ///< URI number of "tsid"
    SERVICE_FIELD_ORIGINAL_NETWORK_ID = 10,  ///< URI number of "onid"
    SERVICE_FIELD_ITEM_TYPE = 21,            ///< item kind masked with 0x13F
    SERVICE_FIELD_VISIBLE = 24,              ///< "1" or "0"
    SERVICE_FIELD_SELECTABLE = 25,           ///< "1" or "0"
    SERVICE_FIELD_CI_SLOT = 26,              ///< URI number of "slotconfig"
    SERVICE_FIELD_PREVIEW_PAGE = 27,         ///< Teletext preview page
    SERVICE_FIELD_SUBTITLE_PAGE = 28,        ///< Teletext subtitle page
    SERVICE_FIELD_ENCODING = 29,             ///< Teletext character encoding
    SERVICE_FIELD_NETWORK_ID = 30,           ///< network id of the list of origin
    SERVICE_FIELD_ORIGINAL_UUID = 31,        ///< always empty
    SERVICE_FIELD_LCN = 32,                  ///< logical channel number, as stored
    SERVICE_FIELD_FREQUENCY = 34,            ///< URI number of "frequency"
    SERVICE_FIELD_TUNER_UUID = 35,           ///< identity of the tuning record
    SERVICE_FIELD_TEST = 37,                 ///< the fixed text "test"
    SERVICE_FIELD_PID = 40,                  ///< database key of the service
    SERVICE_FIELD_NIT_ID = 41,               ///< id of the network information table, as stored
    SERVICE_FIELD_SYMBOL_RATE = 42,          ///< URI number of "symbolrate"
    SERVICE_FIELD_POLARIZATION = 43          ///< URI number of "polarization"
};

/// Columns of a folder row, see m_flfield. An id that is not listed gives the empty text.
enum FolderField {
    FOLDER_FIELD_CAPTION = 0,         ///< display name; "#3052" for "$all", "#3051" for "$av"
    FOLDER_FIELD_UUID = 1,            ///< identity of the list
    FOLDER_FIELD_FLAGS = 2,           ///< low 16 bits of attr(), unsigned decimal
    FOLDER_FIELD_EMPTY = 3,           ///< always empty
    FOLDER_FIELD_CAPABILITY = 4,      ///< capability code, see dbaccess::computeFolder
    FOLDER_FIELD_NETWORK_ID = 5,      ///< network id, as stored
    FOLDER_FIELD_ICON_DIRECTORY = 6,  ///< "/data/servicelist/icons/"
    FOLDER_FIELD_ZERO = 7,            ///< "0"
    FOLDER_FIELD_UPDATE_TAG = 8,      ///< change counter, as stored
    FOLDER_FIELD_FAV_NAME = 9         ///< the creator from its first "FAV" on, or empty
};

/// The columns of a service row at load: channel number, name, item type, attributes, frontend
/// class, DVB service id, UUID, transport stream id, original network id, visible, selectable,
/// database key, LCN, NIT id, symbol rate, polarization.
extern CHANNELLIST_ACCESS_EXPORT int srv[16];

/// The columns of a folder row at load: caption, UUID, flags, an empty column, capability code,
/// network id, FAV name, update tag.
extern CHANNELLIST_ACCESS_EXPORT int fl[8];

/// The columns of a service row: column k holds the field m_svfield[k]. A copy of `srv` made at
/// load; the library only reads it, at every row. A host that changes it does so while no service
/// query runs. An id listed twice fills both columns.
extern CHANNELLIST_ACCESS_EXPORT std::vector<int> m_svfield;

/// The columns of a folder row, as m_svfield for service rows; a copy of `fl` made at load. Must
/// not change while a folder query runs.
extern CHANNELLIST_ACCESS_EXPORT std::vector<int> m_flfield;

/// The next running row number. Every service query sets it to 1; each SERVICE_FIELD_ROW_NUMBER
/// column takes the value and adds one. 0 at load.
extern CHANNELLIST_ACCESS_EXPORT unsigned int m_selectedServiceListId;

/// Forms a list's attribute word: `attributes` shifted left by 16 bits (what is shifted out is
/// lost), with flags in the low bits that depend on the beginning of the list's creator alone.
/// Comparisons are byte-wise. Touches no state; takes no lock.
///
/// | creator | flags |
/// |---|---|
/// | begins with "User.tv" | 0x05 |
/// | begins with "User.radio" | 0x09 |
/// | is "servicelist://tamun.analog" | 0x140 |
/// | begins with "servicelist://tamun.dvb.65536" | 0x42 |
/// | any other that begins with "servicelist:" | 0x40 |
/// | begins with "tamun.sl2.servicelist$all" | 0x10 |
/// | begins with "tamun.sl2.servicelist$av" | 0x20 |
/// | anything else, the empty text too | 0 |
CHANNELLIST_ACCESS_EXPORT unsigned int attr(std::string const& creator, unsigned int attributes);

#endif
