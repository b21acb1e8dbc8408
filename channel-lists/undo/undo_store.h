// What the commands that write keep of a database before they do.
//
// The copies of a database lie in $XDG_STATE_HOME/channellist (~/.local/state/channellist), in a
// folder that is called as the database's real path, the last ten of them: N.json with the lists
// that an edit reached, or N.json beside N.db with the whole database.
#pragma once

#include <string>
#include <vector>

#include "lists/difference.h"

namespace channel_lists {

struct KeptCopy {
    int number = 0;  // newer ones have higher ones
    std::string time;
    std::string command;  // that kept it: "edit FAV1"
    Snapshot lists;
    std::string file;  // the whole database; "" where there are lists
};

class UndoStore {
  public:
    // `isOn` is false for --no-undo: then nothing is kept.
    explicit UndoStore(std::string const& database, bool isOn = true);
    // What was kept for a write that then failed is removed.
    ~UndoStore();
    UndoStore(UndoStore const&) = delete;
    UndoStore& operator=(UndoStore const&) = delete;

    // Where nothing can be kept, the listener is told, and the command goes on.
    void keepLists(std::string const& command, Snapshot const& lists);
    // Nothing else brings a whole database back: throws Failure where it cannot be kept.
    void keepDatabase(std::string const& command);

    // The write is done. Of what keepLists kept, only the lists that differ from `now` stay;
    // nothing when none does.
    void keepOnlyChanged(Snapshot const& now);
    void confirm() { last_.number = 0; }
    // The write was refused: nothing is kept of it.
    void discard();

    // The oldest first. Throws Failure when the folder cannot be read.
    std::vector<KeptCopy> copies() const;

  private:
    std::string fileOf(int number, char const* ending) const;
    std::vector<int> numbers() const;
    void makeFolder() const;
    bool claim(int number) const;
    void write(KeptCopy const& copy) const;
    void remove(int number) const;
    void keep(KeptCopy& copy);
    void keepIn(std::string const& command, Snapshot const& lists);

    std::string database_;
    bool isOn_;
    std::string folder_;  // "" when nothing is kept
    KeptCopy last_;       // what waits for the write; number 0 without
};

}  // namespace channel_lists
