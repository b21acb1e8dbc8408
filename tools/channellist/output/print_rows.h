// Rows and JSON for scripts, on standard output.
#pragma once

#include <string>
#include <vector>

#include "text/json_text.h"
#include "tool.h"

namespace tool {

// Rows as arrays of texts, one a line.
void printRawJson(std::vector<std::vector<std::string>> const& rows);
// Rows as lines of texts with tabs between them; control characters as "\x09".
void printRaw(std::vector<std::vector<std::string>> const& rows);

// Bytes that are no UTF-8 become the replacement character.
void printJson(Json const& value);

}  // namespace tool
