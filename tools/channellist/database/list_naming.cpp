#include "database/list_naming.h"

#include <channellist-access/db_access.h>

#include <algorithm>

#include "database/query.h"
#include "failure.h"

namespace tool {
namespace {

constexpr char kFavCreator[] = "User.tvFAV";

// "FAV1" for the creator "User.tvFAV1"; "" for any other list.
std::string favName(List const& list) {
    return list.creator.compare(0, sizeof kFavCreator - 1, kFavCreator) == 0
               ? list.creator.substr(list.creator.find("FAV"))
               : std::string();
}

bool isCalled(List const& list, std::string const& word) {
    if (word.empty())
        return false;
    return list.name == word || favName(list) == word || (word == "all" && isAllList(list)) ||
           (word == "av" && list.creator == "tamun.sl2.servicelist$av");
}

std::string candidates(std::vector<List> const& lists) {
    std::string text;
    for (List const& list : lists)
        text += (text.empty() ? "" : ", ") + list.uuid;
    return text;
}

}  // namespace

std::vector<List> allLists() {
    std::vector<List> lists;
    Query rows(db, "SELECT Pid, Uuid, Name, Creator FROM FavoriteList");
    while (rows.next()) {
        lists.push_back({static_cast<unsigned int>(rows.number(0)), rows.text(1), rows.text(2),
                         rows.text(3), 0});
    }
    // Edits count the FAV lists by the place of their rows, whatever digit their creators end with.
    Query favLists(db, "SELECT Pid FROM FavoriteList WHERE Creator LIKE 'User.tvFAV%'");
    for (int index = 1; favLists.next(); ++index) {
        auto const pid = static_cast<unsigned int>(favLists.number(0));
        auto const list = std::find_if(lists.begin(), lists.end(),
                                       [&](List const& each) { return each.pid == pid; });
        if (list != lists.end())
            list->favIndex = index;
    }
    return lists;
}

List findList(std::string const& word) {
    std::vector<List> const lists = allLists();
    for (List const& list : lists)
        if (!list.uuid.empty() && list.uuid == word)
            return list;
    std::vector<List> called;
    std::copy_if(lists.begin(), lists.end(), std::back_inserter(called),
                 [&](List const& list) { return isCalled(list, word); });
    if (called.empty()) {
        throw Failure("no list has the uuid or name '" + word +
                      "'; \"channellist folders\" shows the lists");
    }
    if (called.size() > 1) {
        throw Failure("several lists are called '" + word +
                      "', name one by its uuid: " + candidates(called));
    }
    if (called[0].uuid.empty())
        throw Failure("the list '" + word + "' has no uuid, so no request can name it");
    return called[0];
}

bool isAllList(List const& list) { return list.creator == "tamun.sl2.servicelist$all"; }

std::string displayName(List const& list) {
    std::string fav = favName(list);
    if (!fav.empty())
        return fav;
    return list.name.empty() ? list.uuid : list.name;
}

}  // namespace tool
