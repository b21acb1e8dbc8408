// What a terminal can show: how wide a line may be, and colours.
#pragma once

#include <cstddef>
#include <string>

namespace tool {

enum class Style { Plain, Dim, Bold, Red, Yellow };

// "--color auto|always|never", "--wide" and "--no-pager", before anything is printed. Throws
// Failure for another word. "auto" is a terminal that knows escape sequences (TERM is neither empty
// nor "dumb") of a user who has not set NO_COLOR.
void setOutput(std::string const& color, bool wide, bool noPager);

// True where TERM names a terminal, and no dumb one.
bool knowsSequences();

// Columns of a terminal: its own word, else COLUMNS, else 80.
std::size_t terminalWidth(int descriptor);

// Columns of a line of standard output; 0, any number, for what is no terminal or with "--wide".
std::size_t lineWidth();

// Rows of standard output; 0, any number, for what is no terminal or with "--no-pager".
std::size_t pageHeight();

// The text between the style's escape sequences, where there is colour.
std::string styled(Style style, std::string const& text);

// Help of that many columns: lines that are longer go on below where their last column begins.
// Lines of a column alone, which are commands to type, stay whole.
std::string wrapped(std::string const& help, std::size_t width);

// The paragraphs of a text as one line each; indented lines and headings of one word stay lines.
std::string unwrapped(std::string const& text);

}  // namespace tool
