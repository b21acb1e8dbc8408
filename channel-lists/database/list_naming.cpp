#include "database/list_naming.h"

#include <channellist-access/db_access.h>

#include <algorithm>
#include <utility>

#include "database/query.h"
#include "failure.h"
#include "text/display_text.h"
#include "text/folded_text.h"
#include "text/near_names.h"

namespace channel_lists {
namespace {

constexpr char kFavCreator[] = "User.tvFAV";

// "FAV1" for the creator "User.tvFAV1"; "" for any other list.
std::string favName(List const& list) {
    return list.creator.compare(0, sizeof kFavCreator - 1, kFavCreator) == 0
               ? list.creator.substr(list.creator.find("FAV"))
               : std::string();
}

bool isInputList(List const& list) { return list.creator == "tamun.sl2.servicelist$av"; }

bool isFavWord(std::string const& word) {
    return word.size() == 4 && word.compare(0, 3, "FAV") == 0 && word[3] >= '1' && word[3] <= '4';
}

using Rule = bool (*)(List const&, std::string const& word);

// From the surest to the least sure way in which a word can mean a list.
bool isReserved(List const& list, std::string const& word) {
    return favName(list) == word || (word == "all" && isAllList(list)) ||
           ((word == "inputs" || word == "av") && isInputList(list));
}

bool hasUuid(List const& list, std::string const& word) { return list.uuid == word; }

bool isCalled(List const& list, std::string const& word) {
    return list.name == word || displayText(list.name) == word;
}

bool isCalledCaseBlind(List const& list, std::string const& word) {
    return folded(list.name) == folded(word) || folded(displayName(list)) == folded(word);
}

bool holds(List const& list, std::string const& word) {
    return folded(list.name).find(folded(word)) != std::string::npos;
}

// A word with a meaning of its own means no other list where its own is missing.
std::vector<Rule> rulesFor(std::string const& word) {
    if (word.empty())
        return {};
    if (isFavWord(word))
        return {isReserved};
    std::vector<Rule> rules = {isReserved, hasUuid, isCalled, isCalledCaseBlind};
    if (word != "all" && word != "inputs" && word != "av")
        rules.push_back(holds);
    return rules;
}

std::vector<List> listsMeantBy(std::string const& word, std::vector<List> const& lists) {
    std::vector<List> meant;
    for (Rule const fits : rulesFor(word)) {
        std::copy_if(lists.begin(), lists.end(), std::back_inserter(meant),
                     [&](List const& list) { return fits(list, word); });
        if (!meant.empty())
            break;
    }
    return meant;
}

std::string candidates(std::vector<List> const& lists) {
    std::string text;
    for (List const& list : lists)
        text += (text.empty() ? "" : ", ") + list.uuid +
                (displayName(list) == list.uuid ? "" : " (" + displayName(list) + ")");
    return text;
}

std::string suggestion(std::string const& word, std::vector<List> const& lists) {
    std::vector<std::string> names;
    for (List const& list : lists) {
        names.push_back(displayText(displayName(list)));
        names.push_back(displayText(list.name));
    }
    std::string const near = didYouMean(word, names);
    return near.empty() ? "; \"channellist folders\" shows the lists" : near;
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
    std::vector<List> const called = listsMeantBy(word, lists);
    if (called.empty())
        throw Failure("no list has the uuid or name '" + word + "'" + suggestion(word, lists));
    if (called.size() > 1 && called[0].uuid != word) {  // of those with one uuid: the set's choice
        throw Failure("several lists are meant by '" + word +
                      "', name one by its uuid: " + candidates(called));
    }
    if (called[0].uuid.empty())
        throw Failure("the list '" + word + "' has no uuid, so no request can name it");
    return called[0];
}

List allServicesList() {
    std::vector<List> const lists = allLists();
    auto const all = std::find_if(lists.begin(), lists.end(), isAllList);
    if (all == lists.end() || all->uuid.empty())
        throw Failure("the database has no list of all services that a request can name");
    return *all;
}

bool isAllList(List const& list) { return list.creator == "tamun.sl2.servicelist$all"; }

std::string displayName(List const& list) {
    std::string fav = favName(list);
    if (!fav.empty())
        return fav;
    if (isAllList(list))
        return "all";
    if (isInputList(list))
        return "inputs";
    return list.name.empty() ? list.uuid : list.name;
}

}  // namespace channel_lists
