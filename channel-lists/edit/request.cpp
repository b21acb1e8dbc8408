#include "edit/request.h"

#include <channellist-access/db_access.h>

#include <algorithm>
#include <limits>
#include <map>

#include "database/query.h"
#include "failure.h"

namespace channel_lists {
namespace {

// Bits of an entry's flag word.
constexpr unsigned int kDeleted = 0x01;
constexpr unsigned int kRestored = 0x02;
constexpr unsigned int kRenumberFav1 = 0x04;  // and the next three for FAV2 to FAV4

constexpr int kMalformed = -1;

void append(std::vector<std::string>& request, unsigned int flags, Entry const& entry) {
    if (!entry.number) {
        throw Failure("id:" + std::to_string(entry.serviceId) + " (" + entry.name +
                      ") has no channel number that could be written back; move it to one");
    }
    if (*entry.number > std::numeric_limits<std::int32_t>::max())
        throw Failure("no channel number is left for " + entry.name + "; nothing is written");
    request.push_back(std::to_string(flags));
    request.push_back(numberText(entry));
    request.push_back(std::to_string(entry.serviceId));
}

// The renumbering flags of each service that a FAV list holds.
std::map<unsigned int, unsigned int> renumberFlags() {
    std::map<unsigned int, unsigned int> flags;
    for (List const& list : allLists()) {
        if (list.favIndex == 0)
            continue;
        Query items(db, "SELECT ServiceId FROM FavoriteItem WHERE FavoriteId = ?");
        items.bind(std::int64_t{list.pid});
        while (items.next()) {
            flags[static_cast<unsigned int>(items.number(0))] |= kRenumberFav1
                                                                 << (list.favIndex - 1);
        }
    }
    return flags;
}

std::string explain(int code) {
    if (code == kMalformed)
        return "the edit was refused: a number of the request does not convert; nothing is written";
    auto const lists = allLists();
    auto const count = std::count_if(lists.begin(), lists.end(),
                                     [](List const& list) { return list.favIndex != 0; });
    std::string sentence =
        "the edit failed and was rolled back: nothing is written but the list's update tag";
    if (count != 4) {
        sentence +=
            "; it needs exactly four FAV lists, and the database has " + std::to_string(count);
    }
    return sentence;
}

}  // namespace

std::vector<std::string> favListRequest(List const& list, std::vector<Entry> const& after) {
    std::vector<std::string> request = {list.uuid};
    for (Entry const& entry : after)
        append(request, entry.deleted ? kDeleted : 0, entry);
    return request;
}

std::vector<std::string> otherListRequest(List const& list, std::vector<Entry> const& before,
                                          std::vector<Entry> const& after, bool renumber) {
    auto const renumbering = renumber ? renumberFlags() : std::map<unsigned int, unsigned int>();
    std::vector<std::string> request = {list.uuid};
    for (std::size_t i = 0; i < after.size(); ++i) {  // nothing joins or leaves such a list
        if (after[i] == before[i])
            continue;
        unsigned int flags = after[i].deleted ? kDeleted : 0;
        if (after[i].deleted != before[i].deleted) {
            flags |= after[i].deleted ? kDeleted : kRestored;
            auto const held = renumbering.find(after[i].serviceId);
            flags |= held == renumbering.end() ? 0 : held->second;
        }
        append(request, flags, after[i]);
    }
    return request;
}

int submit(std::vector<std::string> const& request) {
    int const code = dbaccess::onServiceListEdit(request);
    if (code < 0)
        throw Failure(explain(code));
    return code;
}

}  // namespace channel_lists
