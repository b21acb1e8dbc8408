// Numbers of lamedb's transponders, by place; what VDR's letters mean by them.
#pragma once

#include <cstddef>

namespace channel_database {

constexpr char kLamedbPolarizations[] = {'H', 'V', 'L', 'R'};
constexpr int kLamedbCodeRates[] = {0, 12, 23, 34, 56, 78, 89, 35, 45, 910, 67};
constexpr int kLamedbSatelliteModulations[] = {0, 2, 5, 16, 6, 7};
constexpr int kLamedbCableModulations[] = {0, 16, 32, 64, 128, 256};
constexpr int kLamedbTerrestrialModulations[] = {2, 16, 64, 0, 256};
constexpr int kLamedbTerrestrialCodeRates[] = {12, 23, 34, 56, 78, 0, 67, 89};
constexpr int kLamedbBandwidths[] = {8, 7, 6, 0, 5, 1712, 10};
constexpr int kLamedbInverted = 1;
constexpr int kLamedbInversionUnknown = 2;

/// 0 where the format has no such place.
template <typename Value, std::size_t Count>
Value valueAt(Value const (&values)[Count], int place) {
    return place >= 0 && place < static_cast<int>(Count) ? values[place] : Value();
}

/// That of 0, which leaves it to the receiver, for a value that the format has no place for.
template <typename Value, std::size_t Count>
int placeOf(Value const (&values)[Count], Value value) {
    int unknown = 0;
    for (std::size_t place = 0; place < Count; ++place) {
        if (values[place] == value)
            return static_cast<int>(place);
        if (values[place] == Value())
            unknown = static_cast<int>(place);
    }
    return unknown;
}

}  // namespace channel_database
