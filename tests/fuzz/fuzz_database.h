// The channel database of the fuzz targets, in memory, and what must hold after every call.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// A file with a service of every kind, an input, the All list, the FAV lists and the Astra list.
std::string const& databaseImage();

/// "Table.Column" of every column in databaseImage().
std::vector<std::string> const& columns();

/// Gives the library `image` as its channel database, and an OTT database; closes those of before.
void openDatabase(std::string const& image);

/// Aborts when the library left a transaction, a statement or the mutex behind.
void expectLibraryAtRest();

/// The parts of `text` between its line feeds.
std::vector<std::string> lines(std::string_view text);

/// Ends the program, with `what` on standard error, unless `holds`.
void expect(bool holds, char const* what);

}  // namespace fuzz
