// The tool's own statements, for what the library has no request for.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "failure.h"

namespace channel_lists {

// Another process holds the database: the same may work later.
class Locked : public Failure {
  public:
    using Failure::Failure;
};

// A prepared statement and its current row. Throws Failure with SQLite's message, Locked where that
// is the reason.
class Query {
  public:
    Query(sqlite3* connection, std::string const& sql);

    Query& bind(std::string const& text);
    Query& bind(std::int64_t number);
    // Moves to the next row; false after the last one.
    bool next();
    // Back to the beginning, with nothing bound.
    void reset();

    bool isNull(int column) const;
    bool isInteger(int column) const;
    std::string text(int column) const;  // "" for NULL
    std::int64_t number(int column) const;
    int columns() const;
    std::string name(int column) const;

  private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    void fail() const;

    sqlite3* connection_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
    int bound_ = 0;
};

// The first column of the first row.
std::int64_t queryNumber(sqlite3* connection, std::string const& sql);

// The attempts of the library's reads.
constexpr int kPatience = 50;

// What `read` gives, as soon as no other process keeps it from reading.
template <class Read>
auto waitWhileLocked(Read read, int attempts = kPatience) {
    constexpr int kPauseMilliseconds = 100;
    for (int attempt = 1;; ++attempt) {
        try {
            return read();
        } catch (Locked const&) {
            if (attempt >= attempts)
                throw;
        }
        sqlite3_sleep(kPauseMilliseconds);
    }
}

}  // namespace channel_lists
