// Taking back what a command wrote to lists, and nothing of what others did since.
#pragma once

#include <string>
#include <vector>

#include "edit/write_list.h"
#include "kept/undo_store.h"

namespace channel_lists {

struct TakenBack : Written {
    bool isWritten() const { return ending == Ending::Written; }

    std::vector<std::string> conflicts;  // entries that others changed since, too
    std::vector<std::string> lost;       // entries that the database has no place for any more
    std::vector<std::string> notes;
};

// Entry by entry, on the database of the session. With conflicts or with what is lost nothing is
// written unless it is forced. Of a copy that does not know what its command wrote the lists come
// back as they were. The store keeps the lists as they are before. Throws Failure; what is written
// then is kept.
TakenBack takeBack(KeptCopy const& copy, bool isForced, UndoStore& store);

}  // namespace channel_lists
