#include "output/print_rows.h"

#include <iostream>

#include "text/display_text.h"

namespace tool {

void printRawJson(std::vector<std::vector<std::string>> const& rows) {
    std::cout << "[";
    for (auto const& row : rows)
        std::cout << (&row == rows.data() ? "\n  " : ",\n  ") << dumpJson(Json(row), -1);
    std::cout << "\n]\n";
}

void printRaw(std::vector<std::vector<std::string>> const& rows) {
    for (auto const& row : rows) {
        for (std::string const& text : row)
            std::cout << (&text == row.data() ? "" : "\t") << displayText(text);
        std::cout << "\n";
    }
}

void printJson(Json const& value) { std::cout << dumpJson(value, 2) << "\n"; }

}  // namespace tool
