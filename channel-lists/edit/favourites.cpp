#include "edit/favourites.h"

#include <algorithm>
#include <deque>
#include <map>
#include <set>

#include "failure.h"
#include "lists/favourite_services.h"
#include "lists/list_text.h"
#include "lists/text_services.h"

namespace channel_lists {
namespace {

using channel_database::Channel;
using channel_database::ChannelsConf;
using channel_database::OtherEntry;

// What one list gets, in the order of the file.
struct Members {
    std::vector<Channel const*> channels;
    std::vector<OtherEntry const*> others;
    std::set<int> groups;
};

// Puts the members of one list together.
class Collector {
  public:
    Collector(List const& list, bool isOnwards, FavouriteServices const& services,
              std::vector<Entry> const& all)
        : services_(services), all_(all), isOnwards_(isOnwards) {
        result_.edit.seen = seeList(list);
        for (Entry const& entry : before())
            stored_[entry.serviceId].push_back(&entry);
    }

    void add(Channel const& channel) {
        if (channel.mark != 0 && !channel.hidden)
            next_ = isOnwards_ ? std::max(next_, std::int64_t{channel.mark}) : channel.mark;
        std::int64_t const number = channel.hidden ? channel.mark : next_;
        auto const match = services_.find(channel, [&](ResultRow const& service) {
            return preferenceOf(entryOf(service).serviceId, number);
        });
        std::string const line = channel.name + " (line " + std::to_string(channel.line) + ")";
        if (match.service == nullptr) {
            result_.notFound.push_back(line);
            return;
        }
        Entry entry = entryOf(*match.service);
        if (match.isByName)
            result_.notes.push_back(line + " is found by name");
        entry.deleted = channel.hidden;
        entry.number = number;
        if (take(entry.serviceId))
            place(entry);
    }

    void add(OtherEntry const& other) {
        ListText const text = parseList(other.text);
        std::string error = "the comment cannot be read";
        TextServices const services(before(), all_);
        Entry const* const found =
            text.lines.empty() ? nullptr : services.find(text.lines[0], error);
        if (found == nullptr) {
            result_.notFound.push_back("line " + std::to_string(other.line) + " (" + error + ")");
            return;
        }
        Entry entry = *found;
        entry.number = text.lines[0].number;
        entry.deleted = text.lines[0].hidden.value_or(false);
        if (take(entry.serviceId))
            entries().push_back(entry);
    }

    void noteGroup(std::string const& group) {
        if (group != displayName(result_.edit.seen.list))
            result_.notes.push_back("written from \"" + group + "\"");
    }

    // Of a list that is not there at all nothing is taken away.
    Favourites result() {
        if (entries().empty() && !result_.notFound.empty()) {
            entries() = before();
            result_.notes.emplace_back("none of its channels is found; the list stays as it is");
        }
        return std::move(result_);
    }

  private:
    std::vector<Entry> const& before() const { return result_.edit.seen.entries; }
    std::vector<Entry>& entries() { return result_.edit.wanted.entries; }

    bool isStoredAt(unsigned int id, std::int64_t number) const {
        auto const stored = stored_.find(id);
        return stored != stored_.end() &&
               std::any_of(stored->second.begin(), stored->second.end(),
                           [&](Entry const* entry) { return entry->number == number; });
    }

    // Of services that are alike: one that the list does not have yet, and that it had.
    int preferenceOf(unsigned int id, std::int64_t number) const {
        bool const isFree = taken_.count(id) == 0;
        return (isFree ? 4 : 0) + (isStoredAt(id, number) ? 2 : 0) +
               (stored_.count(id) != 0 ? 1 : 0);
    }

    // Each service once, or as often as the list held it.
    bool take(unsigned int id) {
        auto const stored = stored_.find(id);
        std::size_t const most = stored == stored_.end() ? 1 : stored->second.size();
        return ++taken_[id] <= most;
    }

    void place(Entry entry) {
        if (!entry.deleted) {
            bool const stays = isStoredAt(entry.serviceId, *entry.number);
            while (result_.edit.seen.reserved.count(*entry.number) != 0 ||
                   (!stays && numbers_.count(*entry.number) != 0))
                ++*entry.number;
            numbers_.insert(*entry.number);
            next_ = *entry.number + 1;
        }
        entries().push_back(std::move(entry));
    }

    FavouriteServices const& services_;
    std::vector<Entry> const& all_;
    bool const isOnwards_;
    Favourites result_;
    std::map<unsigned int, std::vector<Entry const*>> stored_;
    std::map<unsigned int, std::size_t> taken_;
    std::set<std::int64_t> numbers_;
    std::int64_t next_ = 1;
};

List favList(std::string const& name) {
    List list = findList(name);
    if (list.favIndex == 0) {
        throw Failure("'" + name + "' is none of FAV1 to FAV4; --list names the list to write",
                      kUsage);
    }
    return list;
}

// A folder holds all services of a receiver beside its bouquets.
bool holdsBouquets(ChannelsConf const& channels) {
    return std::any_of(
        channels.channels.begin(), channels.channels.end(),
        [](Channel const& channel) { return channel.isReference; });
}

// The FAV list that each group names.
std::map<int, List> listsOfGroups(ChannelsConf const& channels) {
    std::map<int, List> found;
    std::vector<List> const lists = allLists();
    for (std::size_t i = 0; i < channels.groups.size(); ++i)
        for (List const& list : lists)
            if (list.favIndex != 0 && displayName(list) == channels.groups[i])
                found[static_cast<int>(i)] = list;
    bool const isNamed = !found.empty();
    // Bouquets of a receiver that knows no FAV1 to FAV4: the first four of them. One alone may be
    // meant for any of them.
    bool const hasBouquets =
        holdsBouquets(channels) && (channels.groups.size() > 1 || channels.channels[0].group < 0);
    for (List const& list : lists)
        if (hasBouquets && list.favIndex != 0 &&
            list.favIndex <= static_cast<int>(channels.groups.size()) && !isNamed)
            found[list.favIndex - 1] = list;
    if (found.empty()) {
        throw Failure(
            "the file has none of the groups FAV1 to FAV4; --list names the list to write");
    }
    return found;
}

std::deque<std::pair<List, Members>> membersOfLists(ChannelsConf const& channels,
                                                    std::string const& listName) {
    std::map<int, List> const groups =
        listName.empty() ? listsOfGroups(channels) : std::map<int, List>();
    List const all = listName.empty() ? List() : favList(listName);
    std::deque<std::pair<List, Members>> lists;
    auto const membersOf = [&](int group) -> Members* {
        auto const named = groups.find(group);
        if (listName.empty() && named == groups.end())
            return nullptr;
        List const& list = listName.empty() ? named->second : all;
        auto const known = std::find_if(lists.begin(), lists.end(), [&](auto const& each) {
            return each.first.pid == list.pid;
        });
        if (known != lists.end())
            return &known->second;
        return &lists.emplace_back(list, Members()).second;
    };
    for (auto const& [group, list] : groups)
        membersOf(group);  // a group without channels empties its list
    bool const hasBouquets = holdsBouquets(channels);
    for (Channel const& channel : channels.channels) {
        if (hasBouquets && !channel.isReference)
            continue;
        if (Members* const members = membersOf(channel.group)) {
            members->channels.push_back(&channel);
            members->groups.insert(channel.group);
        }
    }
    for (OtherEntry const& other : channels.others)
        if (Members* const members = membersOf(other.group))
            members->others.push_back(&other);
    return lists;
}

}  // namespace

std::vector<Favourites> findFavourites(ChannelsConf const& channels, std::string const& listName) {
    FavouriteServices const services;
    std::vector<Entry> const all = readEntries(allServicesList().uuid).entries;
    std::vector<Favourites> result;
    for (auto const& [list, members] : membersOfLists(channels, listName)) {
        Collector collector(list, members.groups.size() > 1, services, all);
        if (listName.empty() && members.groups.size() == 1)
            collector.noteGroup(channels.groups[static_cast<std::size_t>(*members.groups.begin())]);
        for (Channel const* channel : members.channels)
            collector.add(*channel);
        for (OtherEntry const* other : members.others)
            collector.add(*other);
        result.push_back(collector.result());
    }
    return result;
}

}  // namespace channel_lists
