// One row of the service query, from SQLite's column texts to a finished result row.
#include <channellist-access/db_access.h>

#include "db_access/callback_value.h"
#include "db_access/result_row.h"
#include "db_access/session.h"
#include "db_access/tuning_uri.h"
#include "dbservice_query_result/raw_service_row.h"
#include "dbservice_query_result/service_attributes.h"
#include "dbservice_query_result/service_item_assembly.h"
#include "support/number_text.h"
#include "support/text.h"

#include <memory>
#include <new>

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// The bits of an item kind that a row passes on.
constexpr unsigned int kItemTypeBits = 0x1 | 0x2 | 0x4 | 0x8 | 0x10 | 0x20 | 0x100;

// A parameter of the tuning URI as a number; empty without it.
std::string uriNumber(TuningUri const& uri, TuningKey key) {
    std::optional<std::string_view> const value = uri.value(key);
    return value ? leadingNumberText(*value) : std::string();
}

unsigned int completedAttributes(TuningUri const& uri) {
    unsigned int attributes = static_cast<unsigned int>(sv.attributes);
    if (uri.value(TuningKey::Hdtv) == std::string_view("1"))
        attributes |= kAttributeHdtv;
    if ((attributes & (kAttributeEncrypted | kAttributeLocked)) == 0)
        attributes |= kAttributeFreeToView;
    return attributes;
}

// Clients tell tuners apart by this class: second-generation frontends count as their first.
std::int32_t tunerClass(std::int32_t frontend) {
    switch (frontend) {
        case 1:
            return 1;  // analogue
        case 2:
        case 6:
            return 2;  // terrestrial
        case 3:
        case 7:
            return 3;  // cable
        case 4:
        case 8:
            return 4;  // satellite
        case 5:
            return 5;  // IP
        default:
            return 0;
    }
}

struct InputClass {
    std::string_view locator;
    std::int32_t frontendClass;
};

constexpr InputClass kInputClasses[] = {
    {"rec://plain/hdmi", 6}, {"rec://plain/scart", 7},    {"rec://plain/avs", 8},
    {"rec://plain/vga", 9},  {"rec://plain/spdifin", 10},
};

std::int32_t frontendClass(TuningUri const& uri) {
    if (std::optional<std::string_view> const value = uri.value(TuningKey::Frontend))
        return tunerClass(leadingNumber(*value));
    for (InputClass const& input : kInputClasses)
        if (startsWith(sv.locator, input.locator))
            return input.frontendClass;
    return 0;
}

std::int32_t itemTypeBits(CallSite const& site) {
    unsigned int const kind = static_cast<unsigned int>(sv.itemKind);
    unsigned int const remaining = kind & ~kItemTypeBits;
    if (remaining != 0)
        LOG_FORMAT_AT(site, kLogModule, Error, "TYPE not handled completely: %x remaining.",
                      remaining);
    return static_cast<std::int32_t>(kind & kItemTypeBits);
}

std::string flagText(bool flag) { return flag ? "1" : "0"; }

// The text of one column, out of the snapshot and its tuning URI.
std::string fieldText(int field, TuningUri const& uri, CallSite const& site) {
    switch (field) {
        case SERVICE_FIELD_CAPTION:
            return sv.caption;
        case SERVICE_FIELD_ROW_NUMBER:
            return numberText(static_cast<std::int32_t>(m_selectedServiceListId++));
        case SERVICE_FIELD_ATTRIBUTES:
            return numberText(completedAttributes(uri));
        case SERVICE_FIELD_FRONTEND_CLASS:
            return numberText(frontendClass(uri));
        case SERVICE_FIELD_SATELLITE:
            return uriNumber(uri, TuningKey::Satellite);
        case SERVICE_FIELD_CHANNEL_NUMBER:
            return sv.userIndex;
        case SERVICE_FIELD_UUID:
            return sv.uuid;
        case SERVICE_FIELD_SERVICE_ID:
            return uriNumber(uri, TuningKey::Service);
        case SERVICE_FIELD_TRANSPORT_STREAM_ID:
            return uriNumber(uri, TuningKey::TransportStream);
        case SERVICE_FIELD_ORIGINAL_NETWORK_ID:
            return uriNumber(uri, TuningKey::OriginalNetwork);
        case SERVICE_FIELD_ITEM_TYPE:
            return numberText(itemTypeBits(site));
        case SERVICE_FIELD_VISIBLE:
            return flagText(sv.visible);
        case SERVICE_FIELD_SELECTABLE:
            return flagText(sv.selectable);
        case SERVICE_FIELD_CI_SLOT:
            return uriNumber(uri, TuningKey::SlotConfig);
        case SERVICE_FIELD_PREVIEW_PAGE:
            return numberText(sv.previewPage);
        case SERVICE_FIELD_SUBTITLE_PAGE:
            return numberText(sv.subtitlePage);
        case SERVICE_FIELD_ENCODING:
            return numberText(sv.encoding);
        case SERVICE_FIELD_NETWORK_ID:
            return sv.originalAncestor;
        case SERVICE_FIELD_ORIGINAL_UUID:
            return sv.originalUuid;
        case SERVICE_FIELD_LCN:
            return sv.originalLcn;
        case SERVICE_FIELD_FREQUENCY:
            return uriNumber(uri, TuningKey::Frequency);
        case SERVICE_FIELD_TUNER_UUID:
            return sv.tunerUuid;
        case SERVICE_FIELD_TEST:
            return "test";
        case SERVICE_FIELD_PID:
            return numberText(static_cast<std::int32_t>(sv.servicePid));
        case SERVICE_FIELD_NIT_ID:
            return sv.nitId;
        case SERVICE_FIELD_SYMBOL_RATE:
            return uriNumber(uri, TuningKey::SymbolRate);
        case SERVICE_FIELD_POLARIZATION:
            return uriNumber(uri, TuningKey::Polarization);
        default:
            return std::string();
    }
}

// Names the row and the column that counts as 0: a foul value costs no more than itself.
void logBadColumn(RawServiceRow const& row, ServiceColumn column) {
    LOG_FORMAT_AT(CALL_SITE_OF("service_callback"), kLogModule, Error,
                  "service %s (uuid %s): column %.*s holds no number: '%s'",
                  row.cText(ServiceColumn::Pid), row.cText(ServiceColumn::Uuid),
                  static_cast<int>(serviceColumnName(column).size()),
                  serviceColumnName(column).data(), row.cText(column));
}

// Appends the result row of the snapshot.
int appendResultRow(CallSite const& site, ResultSet* out) {
    boost::shared_ptr<ResultRow> const row = newResultRow(m_svfield.size());
    if (!row) {
        LOG_TEXT_AT(site, kLogModule, Error, "new memory failed!");
        return kMalformed;
    }
    TuningUri const uri(sv.locator);
    for (int const field : m_svfield)
        appendInPlace(*row, [&] { return fieldText(field, uri, site); });
    out->push_back(row);
    return 0;
}

// dbaccess::computeService of a raw row.
int computeService(int argc, RawServiceRow const& svrow, ResultSet* out) {
    CallSite const site = CALL_SITE_OF("computeService");
    if (static_cast<unsigned int>(argc) > svrow.size() || svrow.size() < kServiceColumnCount) {
        LOG_FORMAT_AT(site, kLogModule, Error, "svrow.size is wrong %u",
                      static_cast<unsigned int>(svrow.size()));
        return kMalformed;
    }
    fetchServiceItem(svrow);
    return appendResultRow(site, out);
}

// Converts the row without letting an exception through to SQLite.
int computeServiceGuarded(CallSite const& site, int count, RawServiceRow const& row,
                          ResultSet* out) {
    try {
        return computeService(count, row, out);
    } catch (std::exception const& error) {
        LOG_FORMAT_AT(site, kLogModule, Error, "service row not converted: %s", error.what());
    } catch (...) {
        LOG_TEXT_AT(site, kLogModule, Error, "service row not converted");
    }
    return kStopQuery;
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int dbaccess::service_callback(void* data, int argc, char** values, char** names) {
    if (values == nullptr || names == nullptr) {
        LOG_TEXT(Error, "names or values NULL !!");
        return kStopQuery;
    }
    // On the heap, so that a process without memory is found out before the row is converted.
    std::unique_ptr<RawServiceRow const> const svrow(new (std::nothrow)
                                                         RawServiceRow(argc, values, logBadColumn));
    if (!svrow) {
        LOG_TEXT(Error, "malloc error of svrow !!");
        return kStopQuery;
    }
    LOG_FORMAT(Row, "svrow->size():%d", static_cast<int>(svrow->size()));
    if (computeServiceGuarded(CALL_SITE, argc, *svrow, static_cast<ResultSet*>(data)) != 0) {
        LOG_TEXT(Error, "serivce_callback failed!!");
        return kStopQuery;
    }
    return kContinueQuery;
}

int dbaccess::computeService(int argc, std::vector<std::string> const& svrow, ResultSet* out) {
    return channellist::computeService(argc, RawServiceRow(svrow), out);
}
