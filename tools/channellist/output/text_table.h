// Tables for a terminal.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace tool {

// Columns a terminal needs for `text`: two for wide characters, none for combining ones.
std::size_t displayWidth(std::string const& text);

// `text` as a terminal can show it: control characters as "\x1b", bytes that are no UTF-8 as the
// replacement character.
std::string displayText(std::string const& text);

enum class Align { Left, Right };

struct Column {
    std::string name;
    Align align = Align::Left;
};

class TextTable {
  public:
    explicit TextTable(std::vector<Column> columns);

    // One text a column.
    void add(std::vector<std::string> texts);
    // The columns' names, a rule and the rows; no blanks at the ends of lines.
    void print(std::ostream& out) const;

  private:
    void printRow(std::ostream& out, std::vector<std::string> const& texts) const;

    std::vector<Column> columns_;
    std::vector<std::size_t> widths_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace tool
