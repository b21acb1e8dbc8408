#include "output/json_text.h"

#include <charconv>
#include <iostream>

#include "output/text_table.h"

namespace tool {
namespace {

std::string dump(const Json& value, int indent) {
    return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::optional<std::int64_t> wholeNumber(const std::string& text) {
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (text.empty() || result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

Json numberOrText(const std::string& text) {
    if (text.empty()) {
        return nullptr;
    }
    const auto number = wholeNumber(text);
    return number ? Json(*number) : Json(text);
}

void printRawJson(const std::vector<std::vector<std::string>>& rows) {
    std::cout << "[";
    for (const auto& row : rows) {
        std::cout << (&row == rows.data() ? "\n  " : ",\n  ") << dump(Json(row), -1);
    }
    std::cout << "\n]\n";
}

void printRaw(const std::vector<std::vector<std::string>>& rows) {
    for (const auto& row : rows) {
        for (const std::string& text : row) {
            std::cout << (&text == row.data() ? "" : "\t") << displayText(text);
        }
        std::cout << "\n";
    }
}

void printJson(const Json& value) { std::cout << dump(value, 2) << "\n"; }

}  // namespace tool
