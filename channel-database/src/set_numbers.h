// Numbers of the tuner tables and what a channel list writes for them, both ways.
#pragma once

namespace channel_database {

/// The set numbers 19.2 degrees east 4; the others follow from their position, which keeps them
/// apart from any number that a set gives itself.
int satelliteNumber(int position);
/// In tenths of a degree, west negative; 0 for a number that a set gave itself.
int satellitePosition(int number);

int polarizationNumber(char letter);
/// 0 for a number that is none.
char polarizationLetter(int number);

struct Modcod {
    int modulation = 0;
    int codeRate = 0;
};
/// The MODCOD of EN 302 307, table 12; 0 when the two do not go together.
int modcodNumber(Modcod modcod);
/// Zeros for a number that is none.
Modcod modcodOf(int number);

}  // namespace channel_database
