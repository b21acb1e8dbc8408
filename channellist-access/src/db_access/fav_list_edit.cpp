#include "db_access/fav_list_edit.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "db_access/callback_value.h"
#include "db_access/edit_entries.h"
#include "db_access/session.h"
#include "db_access/waiting_reads.h"
#include "support/number_text.h"

namespace channellist {

namespace {

constexpr LogModule kLogModule = LogModule::DatabaseAccess;

// Sorted once and searched for every entry: cheaper than a hash table, which allocates a node each.
class ServiceIds {
  public:
    explicit ServiceIds(std::vector<std::uint32_t> ids) : ids_(std::move(ids)) {
        std::sort(ids_.begin(), ids_.end());
    }

    bool contain(std::uint32_t id) const {
        return std::binary_search(ids_.begin(), ids_.end(), id);
    }

  private:
    std::vector<std::uint32_t> ids_;
};

// By FAV index, from 1.
constexpr char const* kFavTagUpdates[] = {
    "UPDATE Service SET FavTag= ? WHERE Pid= ?;",
    "UPDATE Service SET FavTag2= ? WHERE Pid= ?;",
    "UPDATE Service SET FavTag3= ? WHERE Pid= ?;",
    "UPDATE Service SET FavTag4= ? WHERE Pid= ?;",
};
static_assert(std::size(kFavTagUpdates) == kFavListCount);

struct StoredItems {
    std::vector<unsigned int> services;
    int withoutService = 0;  // their ServiceId is null or no number
};

int storedItemCallback(void* context, int count, char** values, char** names) {
    StoredItems& items = *static_cast<StoredItems*>(context);
    if (!unsignedColumn(values))
        ++items.withoutService;
    return dbaccess::FAVserviceIdCallback(&items.services, count, values, names);
}

int readStoredItems(unsigned int favoriteListId, StoredItems& items) {
    std::string const sql =
        "SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = " + numberText(favoriteListId) + ";";
    return waitAndRead(
        CALL_SITE, sql.c_str(), storedItemCallback, &items, [&] { items = {}; },
        "Read stored FAV services.");
}

bool convertEntries(std::vector<std::string> const& arguments, std::vector<EditEntry>& entries) {
    entries.reserve(entryCount(arguments));
    for (std::size_t index = 0; index < entryCount(arguments); ++index) {
        std::optional<EditEntry> const entry = convertEntry(arguments, index);
        if (!entry)
            return false;
        entries.push_back(*entry);
    }
    return true;
}

void planRemovals(std::vector<unsigned int> const& stored, std::vector<EditEntry> const& entries,
                  FavListPlan& plan) {
    if (stored.empty())
        LOG_TEXT(Verbose, "The ori FAV list is empty! No FAV service need to be removed.");
    std::vector<std::uint32_t> entryIds;
    entryIds.reserve(entries.size());
    for (EditEntry const& entry : entries)
        entryIds.push_back(entry.serviceId);
    ServiceIds const named(std::move(entryIds));
    for (std::uint32_t const serviceId : stored)
        if (!named.contain(serviceId))
            plan.removals.push_back(serviceId);
}

void planEntries(std::vector<unsigned int> const& stored, std::vector<EditEntry> const& entries,
                 FavListPlan& plan) {
    if (stored.empty())
        LOG_TEXT(Verbose, "The ori FAV list is empty! All written FAV services are new services.");
    ServiceIds const known(stored);
    for (EditEntry const& entry : entries) {
        if (!known.contain(entry.serviceId)) {
            plan.additions.push_back({entry.serviceId, entry.channelNumber});
            continue;
        }
        auto const deleted = static_cast<std::uint8_t>(entry.flags & kEditDeleted);
        plan.updates.push_back({entry.serviceId, entry.channelNumber, deleted});
    }
}

// These three: false after a failure, which has logged itself.
bool writeUpdates(unsigned int favoriteListId, FavListPlan const& plan, Statement& itemUpdate) {
    if (plan.updates.empty()) {
        LOG_TEXT(Verbose, "No services to be updated!");
        return true;
    }
    LOG_FORMAT(Verbose, "Update (count: %d) existed Services to FAV list.",
               static_cast<int>(plan.updates.size()));
    for (FavListPlan::Update const& update : plan.updates) {
        itemUpdate.rebind(update.channelNumber, update.deleted, favoriteListId, update.serviceId);
        if (itemUpdate.step("Update FAV Services.") != SQLITE_DONE)
            return false;
    }
    return true;
}

bool writeAdditions(unsigned int favoriteListId, FavListPlan const& plan) {
    if (plan.additions.empty()) {
        LOG_TEXT(Verbose, "No services to be added!");
        return true;
    }
    LOG_FORMAT(Verbose, "Add (count: %d) new Services to FAV list.",
               static_cast<int>(plan.additions.size()));
    Statement insert;
    if (waitAndPrepare(CALL_SITE,
                       "INSERT INTO FavoriteItem (ServiceId, ChannelNum, FavoriteId, "
                       "OriginalFavoriteId) VALUES (?, ?, ?, ?);",
                       insert) != SQLITE_OK)
        return false;
    for (FavListPlan::Addition const& added : plan.additions) {
        insert.rebind(added.serviceId, added.channelNumber, favoriteListId, favoriteListId);
        if (insert.step("Add FAV Services.") != SQLITE_DONE)
            return false;
    }
    return true;
}

bool writeRemovals(unsigned int favoriteListId, FavListPlan const& plan) {
    if (plan.removals.empty()) {
        LOG_TEXT(Verbose, "No services to be removed!");
        return true;
    }
    LOG_FORMAT(Verbose, "Remove (count: %d) unreceivable Services from FAV list.",
               static_cast<int>(plan.removals.size()));
    Statement remove;
    if (waitAndPrepare(CALL_SITE, "DELETE FROM FavoriteItem WHERE FavoriteId= ? AND serviceId= ?;",
                       remove) != SQLITE_OK)
        return false;
    for (std::uint32_t const serviceId : plan.removals) {
        remove.rebind(favoriteListId, serviceId);
        if (remove.step("Remove unreceivable FAV Services.") != SQLITE_DONE)
            return false;
    }
    return true;
}

EditOutcome writeFavTags(unsigned int favIndex, FavListPlan const& plan) {
    Statement tag;
    if (waitAndPrepare(CALL_SITE, kFavTagUpdates[favIndex - 1], tag) != SQLITE_OK)
        return EditOutcome::Failed;
    for (FavListPlan::Addition const& added : plan.additions) {
        tag.rebind(1, added.serviceId);
        if (tag.step("Update FavTag in Service Table.(Added FAV services)") != SQLITE_DONE)
            return EditOutcome::Failed;
    }
    for (std::uint32_t const serviceId : plan.removals) {
        tag.rebind(0, serviceId);
        if (tag.step("Update FavTag in Service Table.(Removed FAV services)") != SQLITE_DONE)
            return EditOutcome::Failed;
    }
    bool const isSame = plan.additions.empty() && plan.removals.empty();
    return isSame ? EditOutcome::SameServices : EditOutcome::Done;
}

}  // namespace

EditOutcome planFavListEdit(unsigned int favoriteListId, std::vector<std::string> const& arguments,
                            FavListPlan& plan) {
    StoredItems stored;
    if (readStoredItems(favoriteListId, stored) != SQLITE_OK)
        return EditOutcome::Failed;
    plan.itemsWithoutService = stored.withoutService;
    std::vector<EditEntry> entries;
    if (!convertEntries(arguments, entries))
        return EditOutcome::Malformed;
    planRemovals(stored.services, entries, plan);
    planEntries(stored.services, entries, plan);
    return EditOutcome::Done;
}

EditOutcome writeFavListEdit(unsigned int favoriteListId, unsigned int favIndex,
                             FavListPlan const& plan, Statement& itemUpdate) {
    bool const isUpdated = writeUpdates(favoriteListId, plan, itemUpdate);
    itemUpdate.finalize();
    if (!isUpdated || !writeAdditions(favoriteListId, plan) || !writeRemovals(favoriteListId, plan))
        return EditOutcome::Failed;
    return writeFavTags(favIndex, plan);
}

}  // namespace channellist

int dbaccess::FAVserviceIdCallback(void* context, int /*count*/, char** values, char** /*names*/) {
    using namespace channellist;
    if (!unsignedColumn(values))
        return kContinueQuery;
    return appendUnsigned(values, *static_cast<std::vector<unsigned int>*>(context));
}
