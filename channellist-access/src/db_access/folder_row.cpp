// One row of the folder query, from SQLite's column texts to a finished result row.
#include <channellist-access/db_access.h>
#include <channellist-access/item_info.h>
#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <typeinfo>

#include "db_access/callback_value.h"
#include "db_access/folder_icon.h"
#include "db_access/result_row.h"
#include "db_access/session.h"
#include "support/number_text.h"

namespace channellist {
namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// The columns of the folder query, in its order.
enum FolderColumn : std::size_t { Pid, Uuid, Name, Creator, Attributes, NetworkId, UpdateTag };
constexpr std::size_t kFolderColumnCount = UpdateTag + 1;

// Numbers of the translated names of the All list and the external inputs.
constexpr std::int32_t kAllListName = 3052;
constexpr std::int32_t kAvListName = 3051;

constexpr char kIconDirectory[] = "/data/servicelist/icons/";

void describeFolder(FolderItemInfo& item, ResultRow const& row) {
    item.setTitle(row[Name]);
    std::optional<std::int32_t> const attributes = signedNumber(row[Attributes]);
    if (!attributes)
        throw boost::bad_lexical_cast(typeid(std::string), typeid(int));
    unsigned int const word = attr(row[Creator], static_cast<unsigned int>(*attributes));
    item.setAttributes(static_cast<int>(word));
    item.setOriginalAncestor(row[NetworkId]);
    item.setUpdateTag(row[UpdateTag]);
    item.setThumbURL(folderIcon(row[Creator]));
}

std::string captionText(std::string const& caption) {
    if (caption == "$all")
        return "#" + numberText(kAllListName);
    if (caption == "$av")
        return "#" + numberText(kAvListName);
    return caption;
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

std::string favName(std::string const& creator) {
    std::size_t const at = creator.find("FAV");
    return at == std::string::npos ? std::string() : creator.substr(at);
}

std::string fieldText(int field, FolderItemInfo const& item, std::string const& creator,
                      CallSite const& site) {
    switch (field) {
        case FOLDER_FIELD_CAPTION:
            return captionText(item.getCaption());
        case FOLDER_FIELD_UUID:
            return item.getUUID();
        case FOLDER_FIELD_FLAGS:
            return numberText(static_cast<unsigned int>(item.getAttributes()) & 0xFFFF);
        case FOLDER_FIELD_CAPABILITY:
            return capabilityCode(item.getAttributes(), site);
        case FOLDER_FIELD_NETWORK_ID:
            return item.getOriginalAncestor();
        case FOLDER_FIELD_ICON_DIRECTORY:
            return kIconDirectory;
        case FOLDER_FIELD_ZERO:
            return "0";
        case FOLDER_FIELD_UPDATE_TAG:
            return item.getUpdateTag();
        case FOLDER_FIELD_FAV_NAME:
            return favName(creator);
        case FOLDER_FIELD_EMPTY:
        default:
            return std::string();
    }
}

// Fills the empty `row` with the texts of `count` columns, a NULL as the empty string. False when
// memory runs out.
bool copyRawRow(int count, char** values, ResultRow& row) noexcept {
    try {
        row.reserve(count > 0 ? static_cast<std::size_t>(count) : 0);
        for (int column = 0; column < count; ++column)
            row.emplace_back(values[column] != nullptr ? values[column] : "");
    } catch (std::exception const&) {
        return false;
    }
    return true;
}

// Converts the row without letting an exception through to SQLite. A list whose attribute word does
// not convert is left out, and the query goes on.
int computeFolderGuarded(CallSite const& site, int count, ResultRow const& row, ResultSet* out) {
    try {
        return dbaccess::computeFolder(count, row, out);
    } catch (boost::bad_lexical_cast const&) {
        LOG_FORMAT_AT(site, kLogModule, Error,
                      "list %s (uuid %s) left out: column Attributes holds no number: '%s'",
                      row[Name].c_str(), row[Uuid].c_str(), row[Attributes].c_str());
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
    ResultRow flrow;
    if (!copyRawRow(argc, values, flrow)) {
        LOG_TEXT(Error, "malloc error of flrow !!");
        return kStopQuery;
    }
    LOG_FORMAT(Row, "flrow->size():%d", static_cast<int>(flrow.size()));
    if (computeFolderGuarded(CALL_SITE, argc, flrow, static_cast<ResultSet*>(data)) != 0) {
        LOG_TEXT(Error, "folder_callback Failed!!");
        return kStopQuery;
    }
    return kContinueQuery;
}

int dbaccess::computeFolder(int argc, std::vector<std::string> const& flrow, ResultSet* out) {
    if (static_cast<unsigned int>(argc) > flrow.size() || flrow.size() < kFolderColumnCount) {
        LOG_FORMAT(Error, "flrow.size is wrong %d", static_cast<int>(flrow.size()));
        return kMalformed;
    }
    FolderItemInfo item(flrow[Name], flrow[Uuid]);
    describeFolder(item, flrow);
    boost::shared_ptr<ResultRow> const row = newResultRow(m_flfield.size());
    if (!row) {
        LOG_TEXT(Error, "new memory failed!");
        return kMalformed;
    }
    for (int const field : m_flfield)
        row->push_back(fieldText(field, item, flrow[Creator], CALL_SITE));
    out->push_back(row);
    return 0;
}
