#include "output/text_table.h"

#include <algorithm>
#include <numeric>
#include <sstream>

#include "output/pager.h"
#include "text/display_text.h"
#include "tool.h"

namespace tool {
namespace {

constexpr char kGap[] = "  ";
constexpr std::size_t kGapWidth = 2;
// Of a column whose texts are cut or go on below, while others may leave.
constexpr std::size_t kLeastCut = 32;
constexpr std::size_t kLeastWrapped = 24;

bool isFlexible(Column const& column) { return column.leaves < kStays; }

std::size_t total(std::vector<std::size_t> const& widths) {
    std::size_t const shown =
        widths.size() - static_cast<std::size_t>(std::count(widths.begin(), widths.end(), 0U));
    return std::accumulate(widths.begin(), widths.end(), std::size_t{0}) + kGapWidth * (shown - 1);
}

// Of the narrowest table that a column need not leave.
std::size_t leastTotal(std::vector<Column> const& columns, std::vector<std::size_t> widths) {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (isFlexible(columns[i]))
            widths[i] =
                std::min(widths[i], columns[i].leaves == kIsCut ? kLeastCut : kLeastWrapped);
    return total(widths);
}

std::size_t widestFlexible(std::vector<Column> const& columns,
                           std::vector<std::size_t> const& widths) {
    std::size_t widest = columns.size();
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (isFlexible(columns[i]) && (widest == columns.size() || widths[i] > widths[widest]))
            widest = i;
    return widest;
}

// The widths that the columns have on a line; 0 for one that has left.
std::vector<std::size_t> fitted(std::vector<Column> const& columns, std::vector<std::size_t> widths,
                                std::size_t width) {
    if (width == 0)
        return widths;
    for (int next = 1; next <= static_cast<int>(columns.size()); ++next)
        for (std::size_t i = 0; i < columns.size() && leastTotal(columns, widths) > width; ++i)
            if (columns[i].leaves == next)
                widths[i] = 0;
    while (total(widths) > width) {
        std::size_t const widest = widestFlexible(columns, widths);
        if (widest == columns.size() || widths[widest] == 1)
            break;
        --widths[widest];
    }
    return widths;
}

std::vector<std::string> linesOf(Cell const& cell, Column const& column, std::size_t width) {
    if (column.leaves == kWraps)
        return wrapText(cell.text, width);
    return {cutText(cell.text, width)};
}

// Without blanks at its end.
std::string lineOf(std::vector<Cell> const& cells, std::vector<Column> const& columns,
                   std::vector<std::size_t> const& widths) {
    std::string line, blanks;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (widths[i] == 0)
            continue;
        std::string const& text = cells[i].text;
        std::string const padding(widths[i] - std::min(widths[i], displayWidth(text)), ' ');
        bool const isRight = columns[i].align == Align::Right;
        if (isRight || text.empty())
            blanks += padding;
        if (!text.empty()) {
            line.append(blanks).append(styled(cells[i].style, text));
            blanks = isRight ? "" : padding;
        }
        blanks += kGap;
    }
    return line;
}

void printRow(std::ostream& out, std::vector<Cell> const& cells, std::vector<Column> const& columns,
              std::vector<std::size_t> const& widths) {
    std::vector<std::vector<std::string>> lines;
    std::size_t height = 1;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        lines.push_back(linesOf(cells[i], columns[i], widths[i]));
        height = std::max(height, widths[i] == 0 ? 0 : lines[i].size());
    }
    for (std::size_t row = 0; row < height; ++row) {
        std::vector<Cell> shown;
        for (std::size_t i = 0; i < cells.size(); ++i)
            shown.emplace_back(row < lines[i].size() ? lines[i][row] : "", cells[i].style);
        out << lineOf(shown, columns, widths) << '\n';
    }
}

}  // namespace

std::string narrowHelp(std::vector<Column> const& columns) {
    std::vector<Column> leaving;
    std::vector<std::string> cut, wrapping;
    for (Column const& column : columns)
        if (column.leaves > kStays)
            leaving.push_back(column);
        else if (isFlexible(column))
            (column.leaves == kIsCut ? cut : wrapping).push_back(column.name);
    std::sort(leaving.begin(), leaving.end(),
              [](Column const& a, Column const& b) { return a.leaves < b.leaves; });
    std::vector<std::string> names;
    names.reserve(leaving.size());
    for (Column const& column : leaving)
        names.push_back(column.name);
    return "On a terminal that is too narrow these columns leave: " + joined(names) +
           ". Before them, only texts of more than " + std::to_string(kLeastCut) +
           " columns are cut (" + joined(cut) + ")" +
           (wrapping.empty() ? "" : " or go on below (" + joined(wrapping) + ")") +
           ", others last. --wide shows all whole.\n\n";
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
    std::vector<Cell> names, rules;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        names.emplace_back(columns_[i].name, Style::Bold);
        rules.emplace_back(std::string(widths[i], '-'));
    }
    printRow(out, names, columns_, widths);
    printRow(out, rules, columns_, widths);
    for (auto const& row : rows_)
        printRow(out, row, columns_, widths);
}

void TextTable::show() const {
    constexpr int kHeader = 2;
    std::ostringstream text;
    print(text);
    page(text.str(), kHeader);
}

}  // namespace tool
