#include "set_numbers.h"

#include <iterator>
#include <string_view>

namespace channel_database {
namespace {

constexpr int kAstraNumber = 4;
constexpr int kAstraPosition = 192;
constexpr int kFirstNumber = 1000;  // of the others
constexpr int kCircle = 3600;
constexpr std::string_view kPolarizations = "HVLR";

// The MODCODs from 1 on.
constexpr Modcod kModcods[] = {
    {2, 14},  {2, 13}, {2, 25},  {2, 12}, {2, 35}, {2, 23}, {2, 34},  {2, 45},  {2, 56}, {2, 89},
    {2, 910}, {5, 35}, {5, 23},  {5, 34}, {5, 56}, {5, 89}, {5, 910}, {6, 23},  {6, 34}, {6, 45},
    {6, 56},  {6, 89}, {6, 910}, {7, 34}, {7, 45}, {7, 56}, {7, 89},  {7, 910},
};

}  // namespace

int satelliteNumber(int position) {
    return position == kAstraPosition
               ? kAstraNumber
               : kFirstNumber + (position < 0 ? kCircle + position : position);
}

int satellitePosition(int number) {
    if (number == kAstraNumber)
        return kAstraPosition;
    int const position = number - kFirstNumber;
    if (position < 0 || position >= kCircle)
        return 0;
    return position > kCircle / 2 ? position - kCircle : position;
}

int polarizationNumber(char letter) {
    auto const index = kPolarizations.find(letter);
    return index == std::string_view::npos ? 0 : static_cast<int>(index) + 1;
}

char polarizationLetter(int number) {
    bool const known = number >= 1 && number <= static_cast<int>(kPolarizations.size());
    return known ? kPolarizations[static_cast<std::size_t>(number) - 1] : '\0';
}

int modcodNumber(Modcod modcod) {
    for (std::size_t i = 0; i < std::size(kModcods); ++i)
        if (kModcods[i].modulation == modcod.modulation && kModcods[i].codeRate == modcod.codeRate)
            return static_cast<int>(i) + 1;
    return 0;
}

Modcod modcodOf(int number) {
    bool const known = number >= 1 && number <= static_cast<int>(std::size(kModcods));
    return known ? kModcods[number - 1] : Modcod();
}

}  // namespace channel_database
