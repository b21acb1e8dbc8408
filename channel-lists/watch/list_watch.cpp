#include "watch/list_watch.h"

#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <utility>

#include "database/frozen_database.h"
#include "database/query.h"
#include "edit/commit_guard.h"
#include "failure.h"
#include "library_messages/library_messages.h"
#include "listener.h"
#include "lists/current_keys.h"

namespace channel_lists {
namespace {

std::int64_t dataVersion() { return queryNumber(db, "PRAGMA data_version"); }

ListEntries const* listOf(Snapshot const& lists, std::string const& uuid) {
    auto const found = std::find_if(lists.begin(), lists.end(),
                                    [&](ListEntries const& each) { return each.uuid == uuid; });
    return found == lists.end() ? nullptr : &*found;
}

// The lists of `lists` in the order of `order`, empty where they are not there.
Snapshot inOrder(Snapshot const& order, Snapshot const& lists) {
    Snapshot result;
    for (ListEntries const& each : order) {
        ListEntries const* const list = listOf(lists, each.uuid);
        result.push_back({each.uuid, each.listName, {}, each.isFav});
        if (list != nullptr)
            result.back().entries = list->entries;
    }
    return result;
}

std::vector<Change> changesBetween(Snapshot before, Snapshot const& after, CurrentKeys& keys) {
    for (ListEntries& list : before)
        keys.giveTo(list.entries);
    Snapshot both = after;
    for (ListEntries const& list : before)
        if (listOf(after, list.uuid) == nullptr)
            both.push_back(list);
    return differences(inOrder(both, before), inOrder(both, after));
}

}  // namespace

ListWatch::ListWatch(std::string file, std::vector<std::string> const& words)
    : file_(std::move(file)), session_(std::make_unique<Session>(file_)) {
    for (std::string const& word : words)
        uuids_.push_back(findList(word).uuid);
    version_ = dataVersion();
    FrozenDatabase const frozen;
    told_ = read();
}

std::vector<std::string> ListWatch::listNames() const {
    std::vector<std::string> names;
    for (ListEntries const& list : told_)
        names.push_back(list.listName);
    return names;
}

Snapshot ListWatch::read() const {
    Snapshot lists;
    for (List const& list : allLists()) {
        bool const isMeant =
            uuids_.empty() || std::find(uuids_.begin(), uuids_.end(), list.uuid) != uuids_.end();
        if (isMeant && listOf(lists, list.uuid) == nullptr)
            lists.push_back(
                {list.uuid, displayName(list), readEntries(list.uuid).entries, list.favIndex != 0});
    }
    return lists;
}

// The version comes before the lists: what is committed between the two is read, and the next look
// reads once more. The other way round it would never be told.
std::vector<Change> ListWatch::look() {
    std::vector<Change> changes;
    try {
        openAgain();
        std::int64_t const version = dataVersion();
        if (version != version_) {
            FrozenDatabase const frozen;
            Snapshot now = read();
            CurrentKeys keys;
            changes = changesBetween(told_, now, keys);
            told_ = std::move(now);
            version_ = version;
        }
        if (std::exchange(isAway_, false))
            listener().note(file_ + " is back");
    } catch (Locked const&) {
        // as if nothing had changed, yet
    } catch (Failure const& failure) {
        leave(failure.what());
    }
    forgetMessages();
    return changes;
}

// The file that has the name by now; an unfinished write beside it is settled then.
void ListWatch::openAgain() {
    if (session_ != nullptr && channel_database::isMoved(db))
        session_.reset();
    if (session_ != nullptr)
        return;
    session_ = std::make_unique<Session>(file_);
    version_.reset();
}

void ListWatch::leave(std::string const& why) {
    session_.reset();
    if (!std::exchange(isAway_, true))
        listener().note(why + "; waiting for it");
}

}  // namespace channel_lists
