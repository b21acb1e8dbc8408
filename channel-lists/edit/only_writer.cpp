#include "edit/only_writer.h"

#include <channellist-access/db_access.h>

#include <algorithm>

#include "edit/commit_guard.h"
#include "edit/seen_list.h"

namespace channel_lists {

void OnlyWriter::look() {
    if (version_)
        isAlone_ = isAlone_ && fileVersion(db) == version_;
    else  // again for each attempt: what others write elsewhere refuses a commit, too
        isAlone_ = std::all_of(
            states_.begin(), states_.end(),
            [](auto const& list) { return storedState(list.first) == list.second; });
}

void OnlyWriter::hasCommittedUnseen() {
    if (version_)
        ++*version_;
}

bool OnlyWriter::isAlone(std::optional<unsigned int> version) const {
    return isAlone_ && version && version == version_;
}

}  // namespace channel_lists
