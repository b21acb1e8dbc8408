// A list as a text that a person reads and edits, a line an entry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lists/list_content.h"

namespace channel_lists {

// What a line says; the service that it means is looked for later.
struct TextLine {
    int line = 0;  // counted from 1
    std::optional<std::int64_t> number;
    bool isUnnumbered = false;   // it says that the entry has no number
    std::optional<bool> hidden;  // none: as the list has it
    std::string name;
    std::string service;              // name and triplet as they stand, in the text form
    std::string triplet;              // "1-1019-10301", "" without one
    std::optional<std::int64_t> key;  // of the database
};

struct TextError {
    int line;
    std::string sentence;
};

struct ListText {
    std::vector<TextLine> lines;
    std::vector<TextError> errors;
    bool numbersHold = false;  // whatever the order of the lines
};

// The entries in their order, under comments that explain the format.
std::string formatList(std::string const& listName, std::vector<Entry> const& entries);

// With one blank between the words.
std::string squeezed(std::string const& text);

// What `formatList` prints of the entry's name and triplet, squeezed.
std::string serviceText(Entry const& entry);

// Without the mark that some editors write in front of UTF-8.
std::string withoutByteOrderMark(std::string const& text);

// One such line, not aligned.
std::string formatEntry(Entry const& entry);

// The lines of a text that are no comments.
ListText parseList(std::string const& text);

// "FILE:12: no service ..." for every error, in the order of the lines.
std::string explainErrors(std::string const& file, std::vector<TextError> errors);

}  // namespace channel_lists
