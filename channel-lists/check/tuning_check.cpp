// Frequencies and symbol rates, by physics and by the units that the file itself uses: which makers
// number their modulations, polarizations and bands how is theirs.
#include <channellist-access/db_access.h>

#include <algorithm>
#include <array>
#include <map>

#include "check/finding.h"
#include "database/query.h"

namespace channel_lists {
namespace {

struct Quantity {
    char family;  // kinds of delivery that one program writes alike
    char const* table;
    char const* column;
    double ranges[3][2];  // in Hz or Bd, what there is in air and cable
};

constexpr double kMega = 1e6, kGiga = 1e9;

#define CABLE                        \
    {                                \
        { 40 * kMega, 1002 * kMega } \
    }
#define SATELLITE                                                                               \
    {                                                                                           \
        {3.4 * kGiga, 4.8 * kGiga}, {10.7 * kGiga, 12.75 * kGiga}, { 17.3 * kGiga, 31 * kGiga } \
    }
#define SYMBOLS                   \
    {                             \
        { 1 * kMega, 60 * kMega } \
    }

constexpr Quantity kQuantities[] = {
    {'T', "DvbTTuner", "Frequency", CABLE},     {'T', "DvbT2Tuner", "Frequency", CABLE},
    {'C', "DvbCTuner", "Frequency", CABLE},     {'C', "DvbC2Tuner", "Frequency", CABLE},
    {'S', "DvbSTuner", "Frequency", SATELLITE}, {'S', "DvbS2Tuner", "Frequency", SATELLITE},
    {'C', "DvbCTuner", "SymbolRate", SYMBOLS},  {'S', "DvbSTuner", "SymbolRate", SYMBOLS},
    {'S', "DvbS2Tuner", "SymbolRate", SYMBOLS},
};

#undef CABLE
#undef SATELLITE
#undef SYMBOLS

struct Unit {
    char const* frequency;
    char const* symbolRate;
    std::int64_t size;
};

constexpr std::array<Unit, 3> kUnits = {
    {{"Hz", "Bd", 1}, {"kHz", "kBd", 1000}, {"MHz", "MBd", 1000000}}};
constexpr int kNone = -1;

// The one unit in which the value is possible.
int unitOf(Quantity const& quantity, std::int64_t value) {
    if (value <= 0)
        return kNone;
    for (std::size_t unit = 0; unit < kUnits.size(); ++unit)
        for (auto const& range : quantity.ranges) {
            double const size = static_cast<double>(value) * static_cast<double>(kUnits[unit].size);
            if (size >= range[0] && size <= range[1])
                return static_cast<int>(unit);
        }
    return kNone;
}

struct Value {
    std::string keys;  // of its rows
    std::int64_t value;
    int unit;
    std::int64_t services;
};

std::vector<Value> valuesOf(Quantity const& quantity) {
    std::string const column = quantity.column, table = quantity.table;
    Query rows(
        db, "SELECT group_concat(TunerId, ', '), " + column +
                ", (SELECT count(*) FROM DvbService d WHERE d.TunerId IN (SELECT TunerId FROM " +
                table + " u WHERE u." + column + " = t." + column + ")) FROM " + table +
                " t WHERE typeof(" + column +
                ") = 'integer' AND TunerId IN (SELECT TunerId FROM DvbService) GROUP BY " + column);
    std::vector<Value> values;
    while (rows.next())
        values.push_back(
            {rows.text(0), rows.number(1), unitOf(quantity, rows.number(1)), rows.number(2)});
    return values;
}

std::string nameOf(Quantity const& quantity, int unit) {
    Unit const& named = kUnits[static_cast<std::size_t>(unit)];
    return quantity.column[0] == 'F' ? named.frequency : named.symbolRate;
}

// From one unit to another, of the rows that hold a number in it.
std::string conversion(Quantity const& quantity, Value const& value, int unit) {
    auto const from = kUnits[static_cast<std::size_t>(value.unit)].size;
    auto const to = kUnits[static_cast<std::size_t>(unit)].size;
    std::string const column = quantity.column;
    return "UPDATE " + std::string(quantity.table) + " SET " + column + " = " + column +
           (from > to ? " * " + std::to_string(from / to) : " / " + std::to_string(to / from)) +
           " WHERE TunerId IN (" + value.keys + ")";
}

// By their units.
struct Services {
    std::map<int, std::int64_t> counts;
    int values = 0;

    void add(Value const& value) {
        if (value.unit == kNone)
            return;
        counts[value.unit] += value.services;
        ++values;
    }
};

// What most services use; `tied` where as many use another.
int usualUnit(Services const& services, int tied) {
    int usual = kNone;
    std::int64_t most = -1;
    for (auto const& [unit, count] : services.counts) {
        if (count >= most)
            usual = count == most ? tied : unit;
        most = std::max(most, count);
    }
    return usual;
}

// A program may write one kind of delivery in another unit than the next.
bool agree(std::vector<Value> const& values) {
    return values.size() > 1 && std::all_of(
                                    values.begin(), values.end(),
                                    [&](Value const& value) {
                                        return value.unit != kNone &&
                                               value.unit == values.front().unit;
                                    });
}

// All that one table holds in a unit of its own is one value, the first.
std::vector<Value> byUnit(std::vector<Value> const& values) {
    std::vector<Value> groups;
    for (Value const& value : values) {
        auto const group = std::find_if(groups.begin(), groups.end(), [&](Value const& each) {
            return each.unit == value.unit && value.unit != kNone;
        });
        if (group == groups.end()) {
            groups.push_back(value);
            continue;
        }
        group->keys += ", " + value.keys;
        group->services += value.services;
    }
    return groups;
}

void judge(Quantity const& quantity, Value const& value, int usual, Findings& findings) {
    // A frequency of 0, or beyond all that there is, is another rule's.
    bool const isFrequency = quantity.column[0] == 'F';
    if (value.unit == usual || (isFrequency && (value.value <= 0 || value.value > 31000000000)))
        return;
    std::string const stored = std::string(quantity.column) + " is " + std::to_string(value.value);
    Finding finding{isFrequency ? "frequency" : "symbol-rate",
                    Severity::Tuning,
                    std::string(quantity.table) + " " + value.keys,
                    stored + (isFrequency ? ", no frequency of this kind of delivery"
                                          : ", and there are 1 to 60 million symbols a second"),
                    std::to_string(value.services) +
                        (value.services == 1 ? " service" : " services") + " cannot be tuned",
                    decision("scan the transponder anew")};
    if (value.unit != kNone) {
        finding.what = stored + ", in " + nameOf(quantity, value.unit) +
                       ", and the others are in " + nameOf(quantity, usual);
        finding.mend = statements(conversion(quantity, value, usual));
    }
    findings.push_back(finding);
}

void checkColumn(std::string const& column, Findings& findings) {
    std::map<Quantity const*, std::vector<Value>> all;
    Services everywhere;
    std::map<char, Services> families;
    for (Quantity const& quantity : kQuantities) {
        if (column != quantity.column)
            continue;
        all[&quantity] = valuesOf(quantity);
        for (Value const& value : all[&quantity]) {
            everywhere.add(value);
            families[quantity.family].add(value);
        }
    }
    constexpr int kKilo = 1;  // the library's
    int const usual = usualUnit(everywhere, kKilo);
    for (auto const& [quantity, values] : all) {
        Services const& family = families[quantity->family];
        int const own = family.values > 1 ? usualUnit(family, usual) : usual;
        if (!agree(values))
            for (Value const& value : byUnit(values))
                judge(*quantity, value, own, findings);
    }
}

}  // namespace

void checkTuning(Findings& findings) {
    examine(
        "frequency", findings, [&] { checkColumn("Frequency", findings); });
    examine("symbol-rate", findings, [&] { checkColumn("SymbolRate", findings); });
}

}  // namespace channel_lists
