#include "output/text_table.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace tool {
namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr char kEllipsis[] = "\xE2\x80\xA6";
constexpr char kGap[] = "  ";
constexpr std::size_t kGapWidth = 2;
constexpr std::size_t kLeastCut = 12;  // of a column whose texts are cut, while others may leave

// Calls visit(bytes, length, character) for each character; the length is 1 and the character -1
// where the bytes are no UTF-8.
template <class Visit>
void forEachCharacter(std::string const& text, Visit visit) {
    auto const* const bytes = reinterpret_cast<utf8proc_uint8_t const*>(text.data());
    auto const size = static_cast<utf8proc_ssize_t>(text.size());
    for (utf8proc_ssize_t at = 0; at < size;) {
        utf8proc_int32_t character = -1;
        utf8proc_ssize_t const length = utf8proc_iterate(bytes + at, size - at, &character);
        bool const isValid = length > 0;
        visit(text.data() + at, static_cast<std::size_t>(isValid ? length : 1),
              isValid ? character : -1);
        at += isValid ? length : 1;
    }
}

std::size_t widthOf(utf8proc_int32_t character) {
    return character < 0 ? 1U : static_cast<std::size_t>(utf8proc_charwidth(character));
}

bool isControl(utf8proc_int32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

// The widths that the columns have on a line; 0 for one that has left.
std::vector<std::size_t> fitted(std::vector<Column> const& columns, std::vector<std::size_t> widths,
                                std::size_t width) {
    auto const total = [&] {
        std::size_t const shown =
            widths.size() - static_cast<std::size_t>(std::count(widths.begin(), widths.end(), 0U));
        return std::accumulate(widths.begin(), widths.end(), std::size_t{0}) +
               kGapWidth * (shown - 1);
    };
    auto const cutColumn = static_cast<std::size_t>(
        std::find_if(columns.begin(), columns.end(),
                     [](Column const& column) { return column.leaves == kIsCut; }) -
        columns.begin());
    bool const hasCut = cutColumn < columns.size();
    std::size_t const whole = hasCut ? widths[cutColumn] : 0;
    std::size_t const least = std::min(whole, kLeastCut);
    for (int next = 1; width != 0; ++next) {
        if (hasCut)
            widths[cutColumn] = least;
        if (total() <= width || next > static_cast<int>(columns.size()))
            break;
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (columns[i].leaves == next)
                widths[i] = 0;
    }
    if (hasCut && width != 0) {
        std::size_t const others = total() - least;
        widths[cutColumn] = std::min(whole, width > others ? width - others : 1);
    }
    return widths;
}

}  // namespace

std::size_t displayWidth(std::string const& text) {
    std::size_t width = 0;
    forEachCharacter(text, [&](char const*, std::size_t, utf8proc_int32_t character) {
        width += widthOf(character);
    });
    return width;
}

std::string cutText(std::string const& text, std::size_t width) {
    if (displayWidth(text) <= width)
        return text;
    std::string shown;
    std::size_t used = 1;  // of the ellipsis
    bool isFull = false;
    forEachCharacter(text, [&](char const* bytes, std::size_t length, utf8proc_int32_t character) {
        used += widthOf(character);
        isFull = isFull || used > width;
        if (!isFull)
            shown.append(bytes, length);
    });
    return shown + kEllipsis;
}

std::string displayText(std::string const& text) {
    std::string shown;
    forEachCharacter(text, [&](char const* bytes, std::size_t length, utf8proc_int32_t character) {
        if (character < 0) {
            shown += kReplacement;
        } else if (isControl(character)) {
            char escape[16];
            std::snprintf(escape, sizeof escape, "\\x%02x",
                          static_cast<unsigned int>(character) & 0xFFU);
            shown += escape;
        } else {
            shown.append(bytes, length);
        }
    });
    return shown;
}

std::string displayLines(std::string const& text) {
    std::string shown;
    for (std::size_t at = 0; at <= text.size();) {
        std::size_t const end = std::min(text.find('\n', at), text.size());
        shown += (at == 0 ? "" : "\n") + displayText(text.substr(at, end - at));
        at = end + 1;
    }
    return shown;
}

std::string narrowHelp(std::vector<Column> const& columns) {
    std::vector<Column> leaving;
    std::string shortened;
    for (Column const& column : columns)
        if (column.leaves > 0)
            leaving.push_back(column);
        else if (column.leaves == kIsCut)
            shortened = column.name;
    std::sort(leaving.begin(), leaving.end(),
              [](Column const& a, Column const& b) { return a.leaves < b.leaves; });
    std::string names;
    for (Column const& column : leaving)
        names.append(names.empty() ? "" : ", ").append(column.name);
    return "On a terminal that is too narrow " + shortened +
           " is cut, then these columns leave: " + names + ". --wide shows them whole.\n\n";
}

TextTable::TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {
    for (Column const& column : columns_)
        widths_.push_back(displayWidth(column.name));
}

void TextTable::add(std::vector<Cell> cells, Style style) {
    cells.resize(columns_.size(), Cell(""));
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i].text = displayText(cells[i].text);
        if (cells[i].style == Style::Plain)
            cells[i].style = style;
        widths_[i] = std::max(widths_[i], displayWidth(cells[i].text));
    }
    rows_.push_back(std::move(cells));
}

void TextTable::print(std::ostream& out) const {
    std::vector<std::size_t> const widths = fitted(columns_, widths_, lineWidth());
    auto const printRow = [&](std::vector<Cell> const& cells) {
        std::string line, blanks;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (widths[i] == 0)
                continue;
            std::string const text = cutText(cells[i].text, widths[i]);
            std::string const padding(widths[i] - std::min(widths[i], displayWidth(text)), ' ');
            bool const isRight = columns_[i].align == Align::Right;
            if (isRight || text.empty())
                blanks += padding;
            if (!text.empty()) {
                line.append(blanks).append(styled(cells[i].style, text));
                blanks = isRight ? "" : padding;
            }
            blanks += kGap;
        }
        out << line << '\n';
    };
    std::vector<Cell> names, rules;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        names.emplace_back(columns_[i].name, Style::Bold);
        rules.emplace_back(std::string(widths[i], '-'));
    }
    printRow(names);
    printRow(rules);
    for (auto const& row : rows_)
        printRow(row);
}

}  // namespace tool
