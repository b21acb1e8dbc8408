// JSON for scripts.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace channel_lists {

// The decimal number that the whole text is.
std::optional<std::int64_t> wholeNumber(std::string const& text);

using Json = nlohmann::ordered_json;

// The number that `text` is, null for an empty text, else the text itself.
Json numberOrText(std::string const& text);

// Bytes that are no UTF-8 become the replacement character. Negative `indent`: one line.
std::string dumpJson(Json const& value, int indent);

}  // namespace channel_lists
