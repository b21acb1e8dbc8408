// The databases that the library works on, for one run of the tool.
#pragma once

#include <string>

namespace tool {

constexpr char kSetDatabase[] = "/var/tvservice/servicelist.db";

enum class Access { Read, Write };

// Opens a channel database and hands it to the library as `db`; closes it at the end. A file is
// never created: one that is missing, empty or no channel database throws Failure.
//
// The OTT database is handed over too, read-only: an empty one in memory where there is no file,
// because the library itself would create it.
class Session {
  public:
    explicit Session(const std::string& path, Access access = Access::Read);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Hands the library a copy in memory in place of the file, which stays as it is.
    void continueOnCopy();
};

// The file that holds the OTT channels; "" when HOME is not set.
std::string ottDatabasePath();
// Whether the OTT database that the session handed over is a file.
bool ottDatabaseExists();

}  // namespace tool
