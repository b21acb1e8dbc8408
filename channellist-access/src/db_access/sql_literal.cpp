#include "db_access/sql_literal.h"

namespace channellist {

namespace {

constexpr char kEscape = '\1';
constexpr char kNul = '\2';     // behind an escape
constexpr char kItself = '\3';  // the escape, behind one

std::string quoted(std::string_view text) {
    std::string literal = "'";
    for (char const character : text)
        literal.append(character == '\'' ? 2 : 1, character);
    return literal + "'";
}

std::string escaped(std::string_view text) {
    std::string result;
    for (char const character : text) {
        bool const isMarked = character == '\0' || character == kEscape;
        result += isMarked ? kEscape : character;
        if (isMarked)
            result += character == '\0' ? kNul : kItself;
    }
    return result;
}

}  // namespace

std::string sqlLiteral(std::string_view text) {
    if (text.find('\0') == std::string_view::npos)
        return quoted(text);
    return "replace(replace(" + quoted(escaped(text)) + ",'" + kEscape + kNul + "',char(0)),'" +
           kEscape + kItself + "','" + kEscape + "')";
}

}  // namespace channellist
