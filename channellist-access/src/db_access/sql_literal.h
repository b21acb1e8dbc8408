// Text inside a single-quoted SQL literal.
#ifndef CHANNELLIST_DB_ACCESS_SQL_LITERAL_H
#define CHANNELLIST_DB_ACCESS_SQL_LITERAL_H

#include <string>
#include <string_view>

namespace channellist {

// Returns `text` such that '...' around it is one SQL value equal to `text`: a single quote is
// doubled, and a NUL, which would end the statement, becomes a piece of a concatenation.
std::string sqlLiteralBody(std::string_view text);

}  // namespace channellist

#endif
