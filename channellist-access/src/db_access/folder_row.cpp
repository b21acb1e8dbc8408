// One row of the folder query, from SQLite's column texts to a finished result row.
#include <channellist-access/db_access.h>
#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <memory>
#include <new>
#include <typeinfo>

#include "db_access/callback_value.h"
#include "db_access/creator_flags.h"
#include "db_access/folder_query.h"
#include "db_access/result_row.h"
#include "db_access/session.h"
#include "support/number_text.h"
#include "support/raw_row.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

using RawFolderRow = RawRow<FolderColumn>;

// Numbers of the translated names of the All list and the external inputs.
constexpr std::int32_t kAllListName = 3052;
constexpr std::int32_t kAvListName = 3051;

constexpr char kIconDirectory[] = "/data/servicelist/icons/";

// The folder item of a list, for as long as its row: its texts view the row.
struct FolderItem {
    std::string_view caption;
    std::string_view uuid;
    std::string_view creator;
    std::int32_t attributes;
    std::string_view originalAncestor;
    std::string_view updateTag;
};

FolderItem folderItem(RawFolderRow const& row) {
    std::string_view const creator = row.text(FolderColumn::Creator);
    std::optional<std::int32_t> const attributes = signedNumber(row.text(FolderColumn::Attributes));
    if (!attributes)
        throw boost::bad_lexical_cast(typeid(std::string), typeid(int));
    unsigned int const word = attributeWord(creator, static_cast<unsigned int>(*attributes));
    return {row.text(FolderColumn::Name),
            row.text(FolderColumn::Uuid),
            creator,
            static_cast<std::int32_t>(word),
            row.text(FolderColumn::NetworkId),
            row.text(FolderColumn::UpdateTag)};
}

std::string captionText(std::string_view caption) {
    if (caption == "$all")
        return "#" + numberText(kAllListName);
    if (caption == "$av")
        return "#" + numberText(kAvListName);
    return std::string(caption);
}

// What a client may do with the list; the first rule that fits counts.
std::string capabilityCode(std::int32_t attributes, CallSite const& site) {
    constexpr std::int32_t kBit4 = 0x100000;  // bits of the list's own attribute number
    constexpr std::int32_t kBit7 = 0x800000;
    constexpr std::int32_t kBit8 = 0x1000000;
    if (attributes < kBit4)
        return "63";
    if ((attributes & kBit7) != 0)
        return "18";
    if ((attributes & kBit4) != 0 && (attributes & kBit8) != 0) {
        LOG_TEXT_AT(site, kLogModule, Verbose, "list doesn't have edit function.");
        return "48";
    }
    return (attributes & kBit4) != 0 ? "18" : "50";
}

std::string favName(std::string_view creator) {
    std::size_t const at = creator.find("FAV");
    return at == std::string_view::npos ? std::string() : std::string(creator.substr(at));
}

std::string fieldText(int field, FolderItem const& item, CallSite const& site) {
    switch (field) {
        case FOLDER_FIELD_CAPTION:
            return captionText(item.caption);
        case FOLDER_FIELD_UUID:
            return std::string(item.uuid);
        case FOLDER_FIELD_FLAGS:
            return numberText(static_cast<unsigned int>(item.attributes) & 0xFFFF);
        case FOLDER_FIELD_CAPABILITY:
            return capabilityCode(item.attributes, site);
        case FOLDER_FIELD_NETWORK_ID:
            return std::string(item.originalAncestor);
        case FOLDER_FIELD_ICON_DIRECTORY:
            return kIconDirectory;
        case FOLDER_FIELD_ZERO:
            return "0";
        case FOLDER_FIELD_UPDATE_TAG:
            return std::string(item.updateTag);
        case FOLDER_FIELD_FAV_NAME:
            return favName(item.creator);
        case FOLDER_FIELD_EMPTY:
        default:
            return std::string();
    }
}

// dbaccess::computeFolder of a raw row.
int computeFolder(int argc, RawFolderRow const& flrow, ResultSet* out) {
    CallSite const site = CALL_SITE_OF("computeFolder");
    if (static_cast<unsigned int>(argc) > flrow.size() || flrow.size() < kFolderColumnCount) {
        LOG_FORMAT_AT(site, kLogModule, Error, "flrow.size is wrong %d",
                      static_cast<int>(flrow.size()));
        return kMalformed;
    }
    FolderItem const item = folderItem(flrow);
    boost::shared_ptr<ResultRow> const row = newResultRow(m_flfield.size());
    if (!row) {
        LOG_TEXT_AT(site, kLogModule, Error, "new memory failed!");
        return kMalformed;
    }
    for (int const field : m_flfield)
        appendInPlace(*row, [&] { return fieldText(field, item, site); });
    out->push_back(row);
    return 0;
}

// Converts the row without letting an exception through to SQLite. A list whose attribute word does
// not convert is left out, and the query goes on.
int computeFolderGuarded(CallSite const& site, int count, RawFolderRow const& row, ResultSet* out) {
    try {
        return computeFolder(count, row, out);
    } catch (boost::bad_lexical_cast const&) {
        LOG_FORMAT_AT(site, kLogModule, Error,
                      "list %s (uuid %s) left out: column Attributes holds no number: '%s'",
                      row.cText(FolderColumn::Name), row.cText(FolderColumn::Uuid),
                      row.cText(FolderColumn::Attributes));
        return kContinueQuery;
    } catch (std::exception const& error) {
        LOG_FORMAT_AT(site, kLogModule, Error, "folder row not converted: %s", error.what());
    } catch (...) {
        LOG_TEXT_AT(site, kLogModule, Error, "folder row not converted");
    }
    return kStopQuery;
}

}  // namespace
}  // namespace channellist

using namespace channellist;

int dbaccess::folder_callback(void* data, int argc, char** values, char** names) {
    LOG_TEXT_AT(CALL_SITE, LogModule::FolderRow, Trace, "Called");
    if (values == nullptr || names == nullptr) {
        LOG_TEXT(Error, "names or values NULL !!");
        return kStopQuery;
    }
    // On the heap, so that a process without memory is found out before the row is converted.
    std::unique_ptr<RawFolderRow const> const flrow(new (std::nothrow) RawFolderRow(argc, values));
    if (!flrow) {
        LOG_TEXT(Error, "malloc error of flrow !!");
        return kStopQuery;
    }
    LOG_FORMAT(Row, "flrow->size():%d", static_cast<int>(flrow->size()));
    if (computeFolderGuarded(CALL_SITE, argc, *flrow, static_cast<ResultSet*>(data)) != 0) {
        LOG_TEXT(Error, "folder_callback Failed!!");
        return kStopQuery;
    }
    return kContinueQuery;
}

int dbaccess::computeFolder(int argc, std::vector<std::string> const& flrow, ResultSet* out) {
    return channellist::computeFolder(argc, RawFolderRow(flrow), out);
}
