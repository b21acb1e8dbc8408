// Tables for a terminal.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "output/terminal.h"

namespace tool {

// Columns a terminal needs for `text`: two for wide characters, none for combining ones.
std::size_t displayWidth(std::string const& text);

// `text`, or as much of it as fits that many columns, with an ellipsis behind it: it ends behind a
// character with all that combines with it.
std::string cutText(std::string const& text, std::size_t width);

// `text` as a terminal can show it: control characters as "\x1b", bytes that are no UTF-8 as the
// replacement character.
std::string displayText(std::string const& text);

// Of each line of `text`.
std::string displayLines(std::string const& text);

enum class Align { Left, Right };

// What happens to a column on a terminal that is too narrow for the table: it stays; its texts are
// cut, before anything else happens; or it leaves, of several first that of the lowest number.
constexpr int kStays = 0;
constexpr int kIsCut = -1;

struct Column {
    std::string name;
    Align align = Align::Left;
    int leaves = kStays;
};

struct Cell {
    Cell(std::string shown, Style look = Style::Plain) : text(std::move(shown)), style(look) {}
    Cell(char const* shown) : text(shown) {}

    std::string text;
    Style style = Style::Plain;
};

// What the help of a command with such a table says about narrow terminals.
std::string narrowHelp(std::vector<Column> const& columns);

class TextTable {
  public:
    explicit TextTable(std::vector<Column> columns);

    // One cell a column; `style` is that of those without one.
    void add(std::vector<Cell> cells, Style style = Style::Plain);
    // The columns' names, a rule and the rows; no blanks at the ends of lines.
    void print(std::ostream& out) const;

  private:
    std::vector<Column> columns_;
    std::vector<std::size_t> widths_;
    std::vector<std::vector<Cell>> rows_;
};

}  // namespace tool
