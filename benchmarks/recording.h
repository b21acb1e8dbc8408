// What SQLite alone takes for a request of the library: the request's own statements, run again.
#ifndef BENCHMARKS_RECORDING_H
#define BENCHMARKS_RECORDING_H

#include <sqlite3.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

class Recording {
  public:
    struct Statement {
        sqlite3* connection;
        std::string sql;
    };

    // Runs `request` and notes every statement that runs on `connections`.
    Recording(std::vector<sqlite3*> const& connections, std::function<void()> const& request);

    // Lets the statements that were recorded on `from` run on `to` instead.
    void redirect(sqlite3* from, sqlite3* to);

    using RowCallback = int (*)(void* context, int count, char** values, char** names);

    static int doNothing(void* context, int count, char** values, char** names);

    // Runs the statements in their order: those with parameters are prepared once and stepped, all
    // others run through sqlite3_exec with `callback`. Throws std::runtime_error when one fails.
    void replay(RowCallback callback = doNothing, void* context = nullptr) const;

    // The different statements, in the order of their first run.
    std::vector<Statement> const& statements() const { return statements_; }

  private:
    struct Run {
        std::size_t statement;
        std::size_t valueCount;  // of its parameters
        std::array<int, 4> values;

        void setValues(std::string const& sql, char* expanded);
    };

    static int note(unsigned int event, void* context, void* statement, void* text);

    std::vector<Statement> statements_;
    std::vector<Run> runs_;
};

// The service query of a recorded service list.
std::string const& serviceQuery(Recording const& serviceList);

}  // namespace benchmarks

#endif
