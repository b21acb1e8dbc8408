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
    {"DvbTTuner", "Frequency", CABLE},     {"DvbT2Tuner", "Frequency", CABLE},
    {"DvbCTuner", "Frequency", CABLE},     {"DvbC2Tuner", "Frequency", CABLE},
    {"DvbSTuner", "Frequency", SATELLITE}, {"DvbS2Tuner", "Frequency", SATELLITE},
    {"DvbCTuner", "SymbolRate", SYMBOLS},  {"DvbSTuner", "SymbolRate", SYMBOLS},
    {"DvbS2Tuner", "SymbolRate", SYMBOLS},
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

// From one unit to another, where the number is a whole one in it.
std::string conversion(Quantity const& quantity, Value const& value, int unit) {
    auto const from = kUnits[static_cast<std::size_t>(value.unit)].size;
    auto const to = kUnits[static_cast<std::size_t>(unit)].size;
    std::string const column = quantity.column;
    return "UPDATE " + std::string(quantity.table) + " SET " + column + " = " +
           std::to_string(value.value * from / to) + " WHERE " + column + " = " +
           std::to_string(value.value);
}

// What most rows of all tables use, because one program wrote them; the library's where as many use
// another.
int usualUnit(std::map<int, std::int64_t> const& services) {
    constexpr int kKilo = 1;
    int usual = kNone;
    for (auto const& [unit, count] : services)
        if (unit != kNone && (usual == kNone || count > services.at(usual) ||
                              (count == services.at(usual) && unit == kKilo)))
            usual = unit;
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
                    std::to_string(value.services) + " services cannot be tuned",
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
    std::map<int, std::int64_t> services;
    for (Quantity const& quantity : kQuantities) {
        if (column != quantity.column)
            continue;
        all[&quantity] = valuesOf(quantity);
        for (Value const& value : all[&quantity])
            services[value.unit] += value.services;
    }
    int const usual = usualUnit(services);
    for (auto const& [quantity, values] : all)
        for (Value const& value : values)
            if (!agree(values))
                judge(*quantity, value, usual, findings);
}

}  // namespace

void checkTuning(Findings& findings) {
    examine(
        "frequency", findings, [&] { checkColumn("Frequency", findings); });
    examine("symbol-rate", findings, [&] { checkColumn("SymbolRate", findings); });
}

}  // namespace channel_lists
