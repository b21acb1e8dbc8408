#include "db_access/all_list_edit.h"

#include <array>

#include "db_access/edit_entries.h"
#include "db_access/ott_snapshot.h"
#include "db_access/session.h"
#include "db_access/waiting_reads.h"
#include "support/number_text.h"

namespace channellist {

namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// The keys of the FAV lists to renumber; position p is FAV(p + 1). 0: not asked for.
using RenumberRequests = std::array<unsigned int, kFavListCount>;

std::string favListFlagUpdate(std::vector<unsigned int> const& favListIds) {
    std::string sql = "UPDATE FavoriteItem SET isDeleted = ? WHERE FavoriteId IN(";
    for (std::size_t j = 0; j < kFavListCount; ++j)
        sql += (j == 0 ? "" : ",") + numberText(favListIds[j]);
    return sql + ") AND serviceId= ?;";
}

void collectRenumberRequests(EditEntry const& entry, std::vector<unsigned int> const& favListIds,
                             RenumberRequests& requests) {
    if ((entry.flags & (kEditDeleted | kEditRestore)) == 0)
        return;
    for (std::size_t j = 0; j < kFavListCount; ++j)
        if (requests[j] == 0 && (entry.flags & kEditRenumberFav1 << j) != 0)
            requests[j] = favListIds[j];
}

// False after a failing step, which has logged itself.
bool writeEntry(EditEntry const& entry, unsigned int favoriteListId, Statement& itemUpdate,
                Statement& favListFlags) {
    int const isDeleted = (entry.flags & kEditDeleted) != 0 ? 1 : 0;
    LOG_FORMAT(Verbose, "serviceId=%u,isDeleted=%d,channelnumber:%d,flag=%d,restoreEdit:%d.",
               entry.serviceId, isDeleted, static_cast<int>(entry.channelNumber),
               static_cast<int>(entry.flags), (entry.flags & kEditRestore) != 0 ? 1 : 0);
    itemUpdate.rebind(entry.channelNumber, isDeleted, favoriteListId, entry.serviceId);
    if (itemUpdate.step("Update All list in the case of All list edit.") != SQLITE_DONE)
        return false;
    favListFlags.rebind(isDeleted, entry.serviceId);
    return favListFlags.step("Update FAV list in the case of All list edit.") == SQLITE_DONE;
}

// The results are not looked at: both have logged their failures, and the edit itself stands. But
// after some failures SQLite has rolled the whole edit back, and a further write would be one of
// its own. False then.
bool renumber(RenumberRequests const& requests) {
    auto const rolledBack = [] { return sqlite3_get_autocommit(db) != 0; };
    OttSnapshot const oneState;
    for (std::size_t j = 0; j < kFavListCount; ++j) {
        if (requests[j] == 0)
            continue;
        LOG_FORMAT(Notice, "renumberFAVListId[j%d]:%d.", static_cast<int>(j),
                   static_cast<int>(requests[j]));
        dbaccess::renumberFAVList(requests[j], static_cast<unsigned char>(j + 1));
        if (rolledBack())
            return false;
        dbaccess::UpdateListTag(requests[j]);
        if (rolledBack())
            return false;
    }
    return true;
}

}  // namespace

EditOutcome writeAllListEdit(unsigned int favoriteListId,
                             std::vector<unsigned int> const& favListIds,
                             std::vector<std::string> const& arguments, Statement& itemUpdate) {
    RenumberRequests requests = {};
    {
        Statement favListFlags;
        if (waitAndPrepare(CALL_SITE, favListFlagUpdate(favListIds).c_str(), favListFlags) !=
            SQLITE_OK)
            return EditOutcome::Failed;
        for (std::size_t index = 0; index < entryCount(arguments); ++index) {
            std::optional<EditEntry> const entry = convertEntry(arguments, index);
            if (!entry)
                return EditOutcome::Malformed;
            collectRenumberRequests(*entry, favListIds, requests);
            if (!writeEntry(*entry, favoriteListId, itemUpdate, favListFlags))
                return EditOutcome::Failed;
        }
        itemUpdate.finalize();
    }
    return renumber(requests) ? EditOutcome::Done : EditOutcome::Failed;
}

}  // namespace channellist
