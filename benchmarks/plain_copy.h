// What a user would write in place of the library: the service list as 34 strings a row.
#ifndef BENCHMARKS_PLAIN_COPY_H
#define BENCHMARKS_PLAIN_COPY_H

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "recording.h"

namespace SQLite {
class Database;
}

namespace benchmarks {

// Reads a service list with SQLiteCpp.
class PlainCopy {
  public:
    // `serviceList` holds the statements of the same request, recorded.
    PlainCopy(std::filesystem::path const& file, Recording const& serviceList);
    ~PlainCopy();

    std::vector<std::vector<std::string>> read();

  private:
    std::unique_ptr<SQLite::Database> database_;
    std::vector<std::string> before_;  // views, BEGIN, the list's attributes
    std::string query_;
};

}  // namespace benchmarks

#endif
