// Tables for a terminal.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "output/terminal.h"

namespace tool {

enum class Align { Left, Right };

// What happens to a column on a terminal that is too narrow for the table: it stays; it leaves, of
// several first the one with the lowest number; or its texts are cut, or go on below, first in the
// widest such column: the long ones before a column leaves, the others when none is left to.
constexpr int kStays = 0;
constexpr int kIsCut = -1;
constexpr int kWraps = -2;

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
    // On standard output, a page at a time where it is long.
    void show() const;

  private:
    std::vector<Column> columns_;
    std::vector<std::size_t> widths_;
    std::vector<std::vector<Cell>> rows_;
};

}  // namespace tool
