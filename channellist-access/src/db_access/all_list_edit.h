// The edit of the All list, and of every other list that is no FAV list.
#ifndef CHANNELLIST_DB_ACCESS_ALL_LIST_EDIT_H
#define CHANNELLIST_DB_ACCESS_ALL_LIST_EDIT_H

#include <string>
#include <vector>

#include "db_access/statement.h"

namespace channellist {

inline constexpr std::size_t kFavListCount = 4;

// Writes every entry inside the open transaction, then renumbers the FAV lists asked for.
// `favListIds` holds four keys. Returns the status of the last step (101), kMalformed when a number
// does not convert, or kFailed: the caller rolls back.
int writeAllListEdit(unsigned int favoriteListId, std::vector<unsigned int> const& favListIds,
                     std::vector<std::string> const& arguments, Statement& itemUpdate);

}  // namespace channellist

#endif
