#include "db_access/sql_literal.h"

namespace channellist {

std::string sqlLiteralBody(std::string_view text) {
    std::string body;
    body.reserve(text.size());
    for (char const character : text) {
        switch (character) {
            case '\'':
                body += "''";
                break;
            case '\0':
                body += "'||char(0)||'";
                break;
            default:
                body += character;
        }
    }
    return body;
}

}  // namespace channellist
