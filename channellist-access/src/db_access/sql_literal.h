// Text as a value of an SQL statement.
#ifndef CHANNELLIST_DB_ACCESS_SQL_LITERAL_H
#define CHANNELLIST_DB_ACCESS_SQL_LITERAL_H

#include <string>
#include <string_view>

namespace channellist {

// Returns an SQL expression whose value is `text`: the text between single quotes, each of its own
// doubled. A NUL would end the statement; a text with NULs is one literal in which two bytes stand
// for each, however many there are.
std::string sqlLiteral(std::string_view text);

}  // namespace channellist

#endif
