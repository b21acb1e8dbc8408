// JSON for scripts.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tool {

// The decimal number that the whole text is.
std::optional<std::int64_t> wholeNumber(std::string const& text);

using Json = nlohmann::ordered_json;

// The number that `text` is, null for an empty text, else the text itself.
Json numberOrText(std::string const& text);

// Rows as arrays of texts, one a line.
void printRawJson(std::vector<std::vector<std::string>> const& rows);
// Rows as lines of texts with tabs between them; control characters as "\x09".
void printRaw(std::vector<std::vector<std::string>> const& rows);

// Bytes that are no UTF-8 become the replacement character.
void printJson(Json const& value);

}  // namespace tool
