/// The tables of the channel database.
///
/// On a set another component owns this database and creates its tables. This schema is the one
/// that development, tests, benchmarks and the sample use in its place.
///
/// A column that a statement of the library names without its table stands in exactly one of the
/// tables of that statement. No column is declared NOT NULL, so that foul data can be made.
///
/// Numbers that the tuner tables hold:
///
/// | Column                     | Value                                                        |
/// |----------------------------|--------------------------------------------------------------|
/// | Frequency                  | kHz                                                          |
/// | SymbolRate                 | 1000 symbols a second                                        |
/// | Bandwidth                  | MHz                                                          |
/// | Modulation, Constellation  | 2 QPSK, 5 8PSK, 16..256 QAM; 0 automatic                     |
/// | CodeRate                   | numerator and denominator as digits, 34 is 3/4; 0 automatic  |
/// | ModulationCoding           | the MODCOD of EN 302 307, 1..28; 0 automatic                 |
/// | Polarization               | 1 horizontal, 2 vertical, 3 left, 4 right; 0 not known       |
/// | Band                       | 1 low, 2 high; 0 not known                                   |
/// | Satellite                  | number of the orbital position; 4 is 19.2 degrees east       |
/// | PlpId of DVB-T2            | PLP id in the low byte, group id in the next one             |
/// | Frontend                   | the delivery kind, as in Service.Type                        |
#pragma once

#include <sqlite3.h>

namespace channel_database {

/// Which indexes a database gets beside its primary keys.
enum class Indexes {
    Recommended,      ///< those that keep every statement of the library fast
    PrimaryKeysOnly,  ///< none, to measure what the others are worth
};

/// Creates every table and index that `database` does not have yet.
/// Throws std::runtime_error with SQLite's message when that fails.
void createSchema(sqlite3* database, Indexes indexes = Indexes::Recommended);

}  // namespace channel_database
