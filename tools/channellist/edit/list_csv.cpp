#include "edit/list_csv.h"

#include <channellist-access/field_ids.h>
#include <csv.h>

#include <algorithm>
#include <memory>

#include "output/folded_text.h"
#include "output/json_text.h"
#include "services/service_words.h"

namespace tool {
namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
constexpr char const* kColumns[] = {"Number", "State", "Name",     "Triplet",
                                    "Key",    "Kind",  "Delivery", "Frequency"};

std::string quoted(std::string const& field) {
    if (field.find_first_of("\",\r\n") == std::string::npos && field.find_first_of(' ') != 0)
        return field;
    std::string text = "\"";
    for (char const c : field)
        text += c == '"' ? "\"\"" : std::string(1, c);
    return text + '"';
}

std::string lineOf(std::vector<std::string> const& fields) {
    std::string line;
    for (std::string const& field : fields)
        line += (&field == fields.data() ? "" : ",") + quoted(field);
    return line + "\r\n";
}

// The fields of a text, row by row.
class CsvRows {
  public:
    explicit CsvRows(std::string const& text) {
        csv_parser parser;
        csv_init(&parser, CSV_APPEND_NULL);
        std::unique_ptr<csv_parser, decltype(&csv_free)> const owner(&parser, csv_free);
        rows.emplace_back();
        csv_parse(&parser, text.data(), text.size(), addField, endRow, this);
        csv_fini(&parser, addField, endRow, this);
        rows.pop_back();
    }
    std::vector<std::vector<std::string>> rows;

  private:
    static void addField(void* bytes, std::size_t size, void* self) {
        static_cast<CsvRows*>(self)->rows.back().emplace_back(static_cast<char*>(bytes), size);
    }
    static void endRow(int /*character*/, void* self) {
        static_cast<CsvRows*>(self)->rows.emplace_back();
    }
};

// By the header row; "" where the row has no such column.
class Columns {
  public:
    explicit Columns(std::vector<std::string> const& header) {
        for (std::string const& name : header)
            names_.push_back(folded(name));
    }
    std::string of(std::vector<std::string> const& row, char const* name) const {
        auto const place = std::find(names_.begin(), names_.end(), folded(name));
        auto const index = static_cast<std::size_t>(place - names_.begin());
        return index < row.size() && place != names_.end() ? row[index] : std::string();
    }

  private:
    std::vector<std::string> names_;
};

std::string withoutMark(std::string const& text) {
    return text.compare(0, 3, kByteOrderMark) == 0 ? text.substr(3) : text;
}

// What the row says as a line of the text form would; false when a number is none.
bool readRow(Columns const& columns, std::vector<std::string> const& row, TextLine& line) {
    std::string const number = columns.of(row, "Number"), key = columns.of(row, "Key");
    line.number = wholeNumber(number);
    line.key = wholeNumber(key.compare(0, 3, "id:") == 0 ? key.substr(3) : key);
    line.hidden = folded(columns.of(row, "State")) == "hidden";
    line.name = columns.of(row, "Name");
    line.triplet = columns.of(row, "Triplet");
    return (number.empty() || line.number) && (key.empty() || line.key);
}

}  // namespace

std::string formatCsv(std::vector<ResultRow> const& services) {
    std::string text = lineOf({std::begin(kColumns), std::end(kColumns)});
    for (ResultRow const& service : services) {
        Entry const entry = entryOf(service);
        text += lineOf({numberText(entry), entry.deleted ? "hidden" : "shown", entry.name,
                        entry.triplet, std::to_string(entry.serviceId), kindOf(service),
                        deliveryOf(service), service[SERVICE_FIELD_FREQUENCY]});
    }
    return text;
}

bool isCsv(std::string const& text) {
    std::string const first = folded(withoutMark(text.substr(0, text.find('\n'))));
    return first.find("number,") != std::string::npos && first.find("name") != std::string::npos &&
           first[0] != '#';
}

ListText parseCsv(std::string const& text) {
    ListText result;
    std::vector<std::vector<std::string>> const rows = CsvRows(withoutMark(text)).rows;
    Columns const columns(rows.empty() ? std::vector<std::string>() : rows[0]);
    for (std::size_t i = 1; i < rows.size(); ++i) {
        TextLine line;
        line.line = static_cast<int>(i) + 1;
        if (!readRow(columns, rows[i], line))
            result.errors.push_back({line.line, "the number or key is none"});
        else if (line.name.empty() && line.triplet.empty() && !line.key)
            result.errors.push_back({line.line, "the row names no service"});
        else
            result.lines.push_back(std::move(line));
    }
    return result;
}

}  // namespace tool
