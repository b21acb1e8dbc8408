// What the commands that write keep of a database before they do.
//
// The copies of a database lie in $XDG_STATE_HOME/channellist (~/.local/state/channellist), in a
// folder that is called as the database's real path, the last ten of them and of those that "undo"
// itself makes: N.json with the lists that an edit reached, or N.json beside N.db with the whole
// database. Until the write is done N.json is called N.part, and its process holds a lock on it;
// what the write has made is told by N.new, which becomes N.json when it is whole. "last" holds the
// highest number that was ever given: no command takes another's copy for one that it read.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "lists/difference.h"

namespace channel_lists {

struct KeptCopy {
    int number = 0;  // newer ones have higher ones
    std::string time;
    std::string command;  // that kept it: "edit FAV1"
    Snapshot lists;       // before the command
    Snapshot after;       // the same lists as it left them, until then as it was to leave them
    std::string file;     // the whole database; "" where there are lists
    std::string content;  // digest of the whole database as the command left it; "" unknown
    int undoes = 0;       // the copy that was taken back by this write
    std::vector<int> alongside;  // later ones that went with it
    bool isReadable = true;      // else nothing but the number is known
};

// Whether a later one took the copy back.
bool isTakenBack(KeptCopy const& copy, std::vector<KeptCopy> const& copies);

class UndoStore {
  public:
    // `isOn` is false for --no-undo: then nothing is kept.
    explicit UndoStore(std::string const& database, bool isOn = true);
    // What was kept for a write that then failed is removed.
    ~UndoStore();
    UndoStore(UndoStore const&) = delete;
    UndoStore& operator=(UndoStore const&) = delete;

    // What the command is to make of them tells, should it die, whether it did. Where nothing can
    // be kept, the listener is told, and the command goes on.
    void keepLists(std::string const& command, Snapshot const& lists, Snapshot const& after,
                   int undoes = 0);
    // `content` as in KeptCopy. Nothing else brings a whole database back: throws Failure where it
    // cannot be kept.
    void keepDatabase(std::string const& command, std::string const& content, int undoes = 0,
                      std::vector<int> const& alongside = {});

    // The lists before the write as its end shows them: without what others wrote to them.
    void correct(Snapshot const& lists);
    // The write is done. Of what keepLists kept, only the lists that differ from `now` stay;
    // nothing when none does.
    void keepOnlyChanged(Snapshot const& now);
    // `content` digests the whole database as the write left it.
    void confirm(std::string const& content);
    // The write was refused: nothing is kept of it.
    void discard();

    // The oldest first. Throws Failure when the folder cannot be read.
    std::vector<KeptCopy> copies() const;
    // What is left of processes that died is kept if they may have written, and removed else.
    // Returns the numbers of those of which that cannot be told now.
    std::vector<int> settle(
        std::function<std::optional<bool>(KeptCopy const&)> const& wasWritten) const;
    void remove(int number) const;
    // Whether another command takes the copy back, or has done so by now.
    bool isTakenBack(int number) const;

  private:
    std::string fileOf(int number, char const* ending) const;
    std::vector<int> numbers(char const* ending) const;
    void makeFolder() const;
    int firstFree() const;
    void giveName(int number, std::string const& whole) const;
    bool claim(int number);
    void write(KeptCopy const& copy, int descriptor, char const* ending) const;
    KeptCopy read(int number, char const* ending) const;
    void removeOld(bool isUndo) const;
    void keep(KeptCopy& copy);
    bool tryToWriteAnew() const;
    void rewriteAndConfirm();
    void keepIn(KeptCopy copy);

    std::string database_;
    bool isOn_;
    std::string folder_;  // "" when nothing is kept
    KeptCopy last_;       // what waits for the write; number 0 without
    int claimed_ = -1;    // its locked file
};

}  // namespace channel_lists
