// How an edit, or its part for one kind of list, ended.
#ifndef CHANNELLIST_DB_ACCESS_EDIT_OUTCOME_H
#define CHANNELLIST_DB_ACCESS_EDIT_OUTCOME_H

#include "db_access/session.h"

namespace channellist {

enum class EditOutcome {
    Done,
    SameServices,  // done, and no service joined or left the FAV list
    Failed,        // to be rolled back; what failed has logged itself
    Malformed,     // to be rolled back: a number of the request does not convert
    Overtaken,     // to be rolled back: another process wrote behind the plan
};

constexpr bool isDone(EditOutcome outcome) {
    return outcome == EditOutcome::Done || outcome == EditOutcome::SameServices;
}

// What onServiceListEdit answers: the status of the last FavTag step or entry, or 0 without one.
constexpr int resultOf(EditOutcome outcome) {
    switch (outcome) {
        case EditOutcome::Done:
            return SQLITE_DONE;
        case EditOutcome::SameServices:
            return 0;
        case EditOutcome::Malformed:
            return kMalformed;
        default:
            return kFailed;
    }
}

}  // namespace channellist

#endif
