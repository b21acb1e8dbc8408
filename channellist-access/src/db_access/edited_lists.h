// Which lists an edit means: the one that it names, and the four FAV lists.
#ifndef CHANNELLIST_DB_ACCESS_EDITED_LISTS_H
#define CHANNELLIST_DB_ACCESS_EDITED_LISTS_H

#include <functional>
#include <string>
#include <vector>

#include "db_access/edit_outcome.h"
#include "support/log.h"

namespace channellist {

// By key. The keys are the owner's, who may give lists other ones: what was found holds as long as
// nobody else has written.
struct EditedLists {
    unsigned int edited = 0;
    std::vector<unsigned int> fav;  // position p is FAV(p + 1)

    // 1 to 4; 0 when the edited list is no FAV list.
    unsigned int favIndex() const;
};

// Finds the list by its uuid, announces the edit of its key, then finds the FAV lists. Done or
// Failed, which has been told.
EditOutcome findLists(CallSite const& site, std::string const& uuid,
                      std::function<EditOutcome(unsigned int favoriteListId)> const& announce,
                      EditedLists& lists);

}  // namespace channellist

#endif
