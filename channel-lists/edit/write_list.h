// The one way in which a list is written.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "edit/list_edit.h"
#include "failure.h"
#include "kept/undo_store.h"

namespace channel_lists {

// What undo is to know of the write.
struct Keeping {
    UndoStore& store;
    std::string command;  // "edit FAV1"
};

enum class Ending {
    Written,      // it is committed, whatever the notes to the listener say
    NothingToDo,  // the list is as wanted, and nothing was written
    Overtaken,    // somebody changed the list since it was seen; nothing was written
};

struct Written {
    Ending ending = Ending::NothingToDo;
    // Of the lists that the write reaches. `after` is by this write alone: where others wrote to
    // the lists, too, it is what the request alone makes of them.
    Snapshot before, after;
    std::optional<List> overtaken;  // the list that somebody changed, of several the first
};

// A list could not be written, after others were.
class PartlyWritten : public Failure {
  public:
    PartlyWritten(std::string const& sentence, Written lists)
        : Failure(sentence), written(std::move(lists)) {}
    Written const written;
};

// Brings the lists to what is wanted, each in one commit and only if it still is as it was seen at
// that moment; one that is not ends the write, and those before it stay written. They were seen
// within one FrozenDatabase. FAV1 to FAV4 come last, and are what is wanted of them whatever marks
// the edits of other lists have copied there. A hidden entry that joins a FAV list takes a second
// commit, and is shown between the two. Throws Failure when nothing could be written for another
// reason, PartlyWritten when a part is. Takes the library's mutex.
Written writeLists(std::vector<ListEdit> edits, Keeping const& keeping);

// Sees the list, asks what is wanted of it and writes that: again, with the list as it is then, as
// often as somebody changed it in between, some fifty times. Throws Failure when that does not
// suffice.
Written writeAgainAndAgain(std::function<SeenList()> const& see,
                           std::function<WantedList(SeenList const&)> const& want,
                           Keeping const& keeping);

}  // namespace channel_lists
