// One state of the OTT database for all renumberings of an edit: its owner may commit in between.
#ifndef CHANNELLIST_DB_ACCESS_OTT_SNAPSHOT_H
#define CHANNELLIST_DB_ACCESS_OTT_SNAPSHOT_H

#include <sqlite3.h>

namespace channellist {

// While one lives, the first search of its thread fixes what all of them see. The owner of the OTT
// database waits for its end (in WAL mode he need not). Not to be nested.
class OttSnapshot {
  public:
    OttSnapshot() { current_ = this; }
    ~OttSnapshot() {
        current_ = nullptr;
        sqlite3_finalize(read_);
    }
    OttSnapshot(OttSnapshot const&) = delete;
    OttSnapshot& operator=(OttSnapshot const&) = delete;

    // Fixes the state that the thread's snapshot shows, if there is one that shows none yet.
    // Returns SQLite's code.
    static int hold(sqlite3* connection) {
        return current_ != nullptr ? current_->holdWith(connection) : SQLITE_OK;
    }

  private:
    // A read that is not ended keeps its state for the whole connection. Unlike a transaction it
    // ends in any case, whatever memory is left or a host's handler interrupts.
    int holdWith(sqlite3* connection) {
        if (read_ != nullptr)
            return SQLITE_OK;
        int code = sqlite3_prepare_v2(connection, "SELECT count(*) FROM sqlite_master", -1, &read_,
                                      nullptr);
        if (code == SQLITE_OK)
            code = sqlite3_step(read_);
        if (code == SQLITE_ROW)
            return SQLITE_OK;
        sqlite3_finalize(read_);
        read_ = nullptr;
        return code;
    }

    static inline thread_local OttSnapshot* current_ = nullptr;
    sqlite3_stmt* read_ = nullptr;
};

}  // namespace channellist

#endif
