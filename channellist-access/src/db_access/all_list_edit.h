// The edit of the All list, and of every other list that is no FAV list.
#ifndef CHANNELLIST_DB_ACCESS_ALL_LIST_EDIT_H
#define CHANNELLIST_DB_ACCESS_ALL_LIST_EDIT_H

#include <string>
#include <vector>

#include "db_access/edit_outcome.h"
#include "db_access/statement.h"

namespace channellist {

// Writes every entry inside the open transaction, then renumbers the FAV lists asked for.
// `favListIds` holds the keys of FAV1 to FAV4. Done, Malformed or Failed: then the caller rolls
// back.
EditOutcome writeAllListEdit(unsigned int favoriteListId,
                             std::vector<unsigned int> const& favListIds,
                             std::vector<std::string> const& arguments, Statement& itemUpdate);

}  // namespace channellist

#endif
