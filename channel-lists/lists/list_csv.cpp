#include "lists/list_csv.h"

#include <channellist-access/field_ids.h>
#include <csv.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "services/service_words.h"
#include "text/display_text.h"
#include "text/folded_text.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

constexpr char const* kColumns[] = {"Number", "State", "Name",     "Triplet",
                                    "Key",    "Kind",  "Delivery", "Frequency"};

std::string quoted(std::string const& field) {
    bool const isPadded = !field.empty() && (field.front() == ' ' || field.back() == ' ');
    if (field.find_first_of("\",\r\n\t") == std::string::npos && !isPadded)
        return field;
    std::string text = "\"";
    for (char const c : field)
        text += c == '"' ? "\"\"" : std::string(1, c);
    return text + '"';
}

// A spreadsheet computes what begins like a formula; an apostrophe in front keeps it a text. Names
// that have such an apostrophe themselves get one more.
bool looksLikeFormula(std::string const& text) {
    auto const first = text.find_first_not_of('\'');
    return first != std::string::npos &&
           std::string_view("=+-@\t\r").find(text[first]) != std::string_view::npos;
}

std::string asText(std::string const& name) { return (looksLikeFormula(name) ? "'" : "") + name; }

std::string fromText(std::string const& field) {
    bool const isKept = field.compare(0, 1, "'") == 0 && looksLikeFormula(field);
    return isKept ? field.substr(1) : field;
}

std::string lineOf(std::vector<std::string> const& fields) {
    std::string line;
    for (std::string const& field : fields)
        line += (&field == fields.data() ? "" : ",") + quoted(field);
    return line + "\r\n";
}

struct CsvRow {
    int line = 0;  // on which it ends, counted from 1
    std::vector<std::string> fields;
};

// The fields of a text, row by row, up to a quote that is wrong: what follows one means nothing.
class CsvRows {
  public:
    CsvRows(std::string const& text, char separator) {
        csv_parser parser;
        csv_init(&parser, CSV_APPEND_NULL | CSV_STRICT | CSV_STRICT_FINI);
        csv_set_delim(&parser, static_cast<unsigned char>(separator));
        std::unique_ptr<csv_parser, decltype(&csv_free)> const owner(&parser, csv_free);
        std::size_t next = 0;
        for (std::size_t at = 0; at < text.size(); at = next) {
            next = std::min(text.find('\n', at), text.size() - 1) + 1;
            ++line_;
            if (csv_parse(&parser, text.data() + at, next - at, addField, endRow, this) !=
                next - at) {
                errors.push_back({line_, "a quote stands inside a field that has none around it"});
                return;
            }
        }
        if (csv_fini(&parser, addField, endRow, this) != 0)
            errors.push_back({rows.empty() ? 1 : rows.back().line + 1, "a quote is not closed"});
    }
    std::vector<CsvRow> rows;
    std::vector<TextError> errors;

  private:
    static void addField(void* bytes, std::size_t size, void* self) {
        static_cast<CsvRows*>(self)->current_.fields.emplace_back(static_cast<char*>(bytes), size);
    }
    static void endRow(int /*character*/, void* self) {
        auto& all = *static_cast<CsvRows*>(self);
        all.current_.line = all.line_;
        all.rows.push_back(std::exchange(all.current_, CsvRow()));
    }

    CsvRow current_;
    int line_ = 0;
};

// By the header row; "" where the row has no such column.
class Columns {
  public:
    explicit Columns(std::vector<std::string> const& header) {
        for (std::string const& name : header)
            names_.push_back(folded(name));
    }
    bool has(char const* name) const {
        return std::count(names_.begin(), names_.end(), folded(name)) != 0;
    }
    std::string of(std::vector<std::string> const& row, char const* name) const {
        auto const place = std::find(names_.begin(), names_.end(), folded(name));
        auto const index = static_cast<std::size_t>(place - names_.begin());
        return index < row.size() && place != names_.end() ? row[index] : std::string();
    }

  private:
    std::vector<std::string> names_;
};

// What the row says as a line of the text form would. Gives what is wrong in it, "" for nothing.
std::string readRow(Columns const& columns, std::vector<std::string> const& row, TextLine& line) {
    std::string const number = columns.of(row, "Number"), key = columns.of(row, "Key");
    std::string const state = folded(columns.of(row, "State"));
    line.number = wholeNumber(number);
    line.isUnnumbered = number.empty() && columns.has("Number");
    line.key = wholeNumber(key.compare(0, 3, "id:") == 0 ? key.substr(3) : key);
    if (!state.empty())
        line.hidden = state == "hidden";
    line.name = fromText(columns.of(row, "Name"));
    line.triplet = columns.of(row, "Triplet");
    if ((!number.empty() && !line.number) || (!key.empty() && !line.key))
        return "the number or key is none";
    if (!state.empty() && state != "hidden" && state != "shown")
        return "the state '" + columns.of(row, "State") + "' is neither shown nor hidden";
    return line.name.empty() && line.triplet.empty() && !line.key ? "the row names no service" : "";
}

// What stands behind the first column's name: spreadsheets of some languages write semicolons or
// tabs. Nothing for a text that is no table of a list.
std::optional<char> separatorIn(std::string const& text) {
    std::string header = withoutByteOrderMark(text.substr(0, text.find_first_of("\r\n")));
    header.erase(std::remove(header.begin(), header.end(), '"'), header.end());
    std::size_t const end = header.find_first_of(",;\t");
    std::string const first = folded(header.substr(0, end));
    bool const isNamed = std::any_of(std::begin(kColumns), std::end(kColumns),
                                     [&](char const* column) { return first == folded(column); });
    return isNamed && end != std::string::npos ? std::optional(header[end]) : std::nullopt;
}

}  // namespace

std::string formatCsv(std::vector<ResultRow> const& services) {
    std::string text = lineOf({std::begin(kColumns), std::end(kColumns)});
    for (ResultRow const& service : services) {
        Entry const entry = entryOf(service);
        text +=
            lineOf({numberText(entry), entry.deleted ? "hidden" : "shown",
                    asText(displayText(entry.name)), entry.triplet, std::to_string(entry.serviceId),
                    kindOf(service), deliveryOf(service), service[SERVICE_FIELD_FREQUENCY]});
    }
    return text;
}

bool isCsv(std::string const& text) { return separatorIn(text).has_value(); }

ListText parseCsv(std::string const& text) {
    ListText result;
    result.numbersHold = true;
    CsvRows const csv(withoutByteOrderMark(text), separatorIn(text).value_or(','));
    result.errors = csv.errors;
    Columns const columns(csv.rows.empty() ? std::vector<std::string>() : csv.rows[0].fields);
    for (std::size_t i = 1; i < csv.rows.size(); ++i) {
        TextLine line;
        line.line = csv.rows[i].line;
        std::string const error = readRow(columns, csv.rows[i].fields, line);
        if (error.empty())
            result.lines.push_back(std::move(line));
        else
            result.errors.push_back({line.line, error});
    }
    return result;
}

}  // namespace channel_lists
