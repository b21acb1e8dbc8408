#include "db_access/sql_literal.h"

#include <algorithm>

namespace channellist {

namespace {

constexpr char kMarkLetter = '\1';
constexpr char kMarkEnd[] = "\2";

std::string quoted(std::string_view text) {
    std::string literal = "'";
    for (char const character : text)
        literal.append(character == '\'' ? 2 : 1, character);
    return literal + "'";
}

// A mark that stands nowhere in `text`, nor begins in it: one letter more in a row than it has.
std::string unusedMark(std::string_view text) {
    std::size_t longest = 0;
    std::size_t current = 0;
    for (char const character : text) {
        current = character == kMarkLetter ? current + 1 : 0;
        longest = std::max(longest, current);
    }
    return std::string(longest + 1, kMarkLetter) + kMarkEnd;
}

}  // namespace

std::string sqlLiteral(std::string_view text) {
    if (text.find('\0') == std::string_view::npos)
        return quoted(text);
    std::string const mark = unusedMark(text);
    std::string marked;
    for (char const character : text)
        if (character == '\0')
            marked += mark;
        else
            marked += character;
    return "replace(" + quoted(marked) + ",'" + mark + "',char(0))";
}

}  // namespace channellist
