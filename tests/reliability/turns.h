// Processes that take turns, in an order that a seed decides.
//
// One of them runs at a time. Before every lock and unlock of a file, and in every sleep and flush,
// it draws who goes on. A sleep takes no time but lets the others have some turns first; a flush
// reaches no disk. The same seed and the same programs give the same order.
//
// A test makes a table and starts its processes by fork; each sits down first:
//
//     turns::Table table(2, seed);
//     startChild([&] { turns::Seat const seat = table.sit(0); edit(); });
//     startChild([&] { turns::Seat const seat = table.sit(1); read(); });
//
// Any other program takes part by the shared library, built from the same source (target "turns"):
//
//     LD_PRELOAD=.../libturns.so TURNS_TABLE=FILE TURNS_SEAT=0 program ...
//
// with FILE from table.file(). It stands up when it ends; its own children take no part. For a
// process that was killed the test clears the seat. The test itself stays outside, and sees to it
// that as many sit down as there are seats: nobody begins before.
#pragma once

#include <cstdint>
#include <string>

namespace turns {

struct Shared;

/// Takes part until it is gone.
class Seat {
  public:
    ~Seat();
    Seat(Seat const&) = delete;
    Seat& operator=(Seat const&) = delete;

  private:
    friend class Table;
    Seat() = default;
};

class Table {
  public:
    static constexpr unsigned kMostSeats = 8;

    Table(unsigned seats, std::uint64_t seed);
    ~Table();
    Table(Table const&) = delete;
    Table& operator=(Table const&) = delete;

    /// For the next round, once all have left.
    void renew(unsigned seats, std::uint64_t seed);
    /// Makes the calling process take part. Returns when its first turn has come.
    Seat sit(unsigned seat);
    /// The process that sat there was killed.
    void clear(unsigned seat);
    std::string const& file() const { return file_; }
    /// How many turns were taken.
    unsigned turns() const;

  private:
    std::string file_;
    Shared* shared_;
};

}  // namespace turns
