// The databases that the library works on, for one run of the tool.
#pragma once

#include <string>

#include "failure.h"

namespace channel_lists {

constexpr char kSetDatabase[] = "/var/tvservice/servicelist.db";

enum class Access { Read, Write };

// Whether an OTT database that cannot be opened is a Failure, or counts as an empty one.
enum class Ott { Needed, IfReadable };

// SQLite takes the file for a damaged database.
class Damaged : public Failure {
  public:
    using Failure::Failure;
};

// Hands the OTT database to the library as `db_zentova`, read-only: an empty one in memory where
// there is no file, or an empty one, because the library itself would create it. Closes it at the
// end.
class OttSession {
  public:
    OttSession() : OttSession(Ott::Needed) {}
    explicit OttSession(Ott ott);
    ~OttSession();
    OttSession(OttSession const&) = delete;
    OttSession& operator=(OttSession const&) = delete;

    // The file; "" when HOME is not set.
    std::string const& path() const { return path_; }
    bool exists() const { return exists_; }
    // Why the file could not be opened; "" where it could.
    std::string const& problem() const { return problem_; }

  private:
    std::string path_;
    bool exists_ = false;
    std::string problem_;
};

// Opens a channel database and hands it to the library as `db`; closes it at the end. A file is
// never created: one that is missing, empty or no channel database throws Failure.
class Session {
  public:
    explicit Session(std::string const& path, Access access = Access::Read, Ott ott = Ott::Needed);
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    // Hands the library a copy in memory in place of the file, which stays as it is.
    void continueOnCopy();

    std::string const& ottProblem() const { return ott_.problem(); }

  private:
    OttSession ott_;
};

}  // namespace channel_lists
