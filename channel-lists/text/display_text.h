// Texts of any origin as a terminal shows them.
#pragma once

#include <string>
#include <vector>

namespace channel_lists {

// Columns a terminal needs for `text`: two for wide characters, none for combining ones.
std::size_t displayWidth(std::string const& text);

// `text`, or as much of it as fits that many columns, with an ellipsis behind it: it ends behind a
// character with all that combines with it.
std::string cutText(std::string const& text, std::size_t width);

// `text` in lines of that many columns: broken behind commas where that suffices, else at blanks,
// and within a word that is longer.
std::vector<std::string> wrapText(std::string const& text, std::size_t width);

// `text` as a terminal can show it: control characters as "\x1b", those that are invisible, or turn
// the direction of what follows, as "\u202e", bytes that are no UTF-8 as the replacement character.
std::string displayText(std::string const& text);

// Of each line of `text`.
std::string displayLines(std::string const& text);

// The words as one text.
std::string joined(std::vector<std::string> const& words, char const* separator = ", ");

}  // namespace channel_lists
