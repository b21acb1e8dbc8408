// The entry points that touch a file, each with a call on the database of workshop.h.
#pragma once

#include <channellist-access/db_access.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

/// What a call answered: its text is comparable, "" where it found nothing.
struct Answer {
    bool failed;  // the call said so
    std::string text;
};

enum class Writes {
    Nothing,
    Whole,       // everything or nothing
    WholeEdit,   // too, but a renumbering of FAV lists that fails inside it is only logged
    ItemByItem,  // outside a transaction: every item is as before or as after
};

struct EntryPoint {
    char const* name;
    Writes writes;
    bool opens;           // on demand; otherwise `db` has to be open
    bool maySayLess;      // a failure may show as nothing but an answer cut short
    bool raisesBadAlloc;  // as the header says
    Answer (*call)();     // the library works inside a FaultWindow, the test does not
};

std::ostream& operator<<(std::ostream& out, EntryPoint const& entry);

extern std::vector<EntryPoint> const kEntryPoints;

/// An edit of `list` that gives its services the channel numbers first, first + 1, ...
std::vector<std::string> edit(std::string const& list, std::vector<int> const& services,
                              unsigned int first, unsigned int flags = 0);

std::vector<int> allServices();

/// The services of a FAV list edit whose first number is `first`: other ones for other hundreds.
std::vector<int> servicesFor(unsigned int first);

/// What such an edit leaves: the number and the key of each service, in a line each.
std::string listing(std::vector<int> const& services, unsigned int first);
