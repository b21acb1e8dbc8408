/// Puts a whole database into a file. A database in use is never replaced, its content is.
#pragma once

#include <sqlite3.h>

#include <functional>
#include <string>

namespace channel_database {

/// Throws std::runtime_error, which names the reason, unless `path` is a regular file, a symbolic
/// link to one too, and a SQLite database or empty.
void checkReplaceable(std::string const& path);

/// Whether the open file was replaced or renamed: what is written there nobody would see.
bool isMoved(sqlite3* connection);

/// Gives the database at `path`, which checkReplaceable accepts, the content of `source`, which no
/// one else writes to. SQLite's backup interface does it in one transaction: the locks of other
/// processes are waited for, up to ten seconds, an unfinished journal or write-ahead log is settled
/// first, and the file itself stays, with its owner, mode and links. Journal mode and page size
/// stay as well. It is flushed to the disk, the removal of the journal included. `beforeReplacing`
/// is called first, to keep or look at what is replaced, and again as often as somebody writes
/// between that and the lock. Throws std::runtime_error; the content is the old one then.
void replaceContent(sqlite3* source, std::string const& path,
                    std::function<void()> const& beforeReplacing = {});

/// Makes the file `path` with the content of `source`, in the mode of the rollback journal, so that
/// it can be read from a medium that nothing can be written to. It has no name until it is whole
/// and flushed (on file systems that cannot do so: a name of its own beside it), and replaces
/// nothing. The name is flushed, too. Throws std::runtime_error, also when `path` exists.
void writeNewFile(sqlite3* source, std::string const& path);

/// Makes the file `file` with one state of the database at `path`, as writeNewFile does. Others may
/// use the database meanwhile.
void copyToNewFile(std::string const& path, std::string const& file);

/// The page size of the database at `path`, which checkReplaceable accepts; SQLite's default for an
/// empty file.
int pageSize(std::string const& path);

}  // namespace channel_database
