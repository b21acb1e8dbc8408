// The database that the tests here call the library on.
#pragma once

#include <ostream>
#include <string>
#include <vector>

constexpr int kServices = 12;
constexpr int kFavServices = 6;  ///< services 1 to 6 are in each FAV list at first
constexpr int kOwnLists = 6;     ///< "list-own-1" and so on, with every service

/// A database file as another process would find it, read around the faults.
struct Contents {
    std::string tables;      // all that the library writes, but for the following
    std::string favNumbers;  // channel numbers of the FAV lists
    std::vector<int> tags;   // of each list
    std::string integrity;   // "ok"
};

enum class Journal { Rollback, Wal };

inline std::ostream& operator<<(std::ostream& out, Journal journal) {
    return out << (journal == Journal::Wal ? "Wal" : "Rollback");
}

/// A directory with both databases, where the library finds them; removed at the end.
class Workshop {
  public:
    explicit Workshop(Journal journal, bool realTime = false);
    ~Workshop();
    Workshop(Workshop const&) = delete;
    Workshop& operator=(Workshop const&) = delete;

    /// Puts the database back as it was made, and the library as in a fresh process.
    void renew();
    Contents contents() const;
    /// The rows of queries, "a|b|" each in a line.
    std::string rows(char const* sql) const;
    /// True while the database file is, byte by byte, as it was made.
    bool isUntouched() const;
    /// The channel database, and the OTT database.
    std::string const& file() const { return file_; }
    std::string ottFile() const;

  private:
    std::string directory_;
    std::string file_;
    std::string beside_;  // what is beside it while it has a journal
    std::string made_;    // the file's bytes
};

/// Closes the library's connections, which must hold no statement, and empties its globals.
void forgetLibraryState();
