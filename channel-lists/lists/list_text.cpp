#include "lists/list_text.h"

#include <algorithm>
#include <limits>
#include <sstream>

#include "text/display_text.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

constexpr char kExplanation[] =
    "# A line is an entry: number, shown or hidden, name, DVB triplet (network-stream-service), "
    "key.\n"
    "# Move lines to bring the list into their order; the numbers are dealt out again in it.\n"
    "# A line without a number takes the next one after the line above; another number is kept.\n"
    "# Write hidden for shown, or shown for hidden; in FAV1 to FAV4 also delete and add lines:\n"
    "# a key (id:21), a triplet or a name is enough for a service that it alone fits.\n";
constexpr char kBlanks[] = " \t\r";
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
constexpr char kNone[] = "-";  // for a number or triplet
constexpr std::size_t kMarkWidth = 6;

std::string padded(std::string const& text, std::size_t width) {
    std::size_t const columns = displayWidth(text);
    return text + std::string(width > columns ? width - columns : 0, ' ');
}

bool isTriplet(std::string const& word) {
    return std::count(word.begin(), word.end(), '-') == 2 && word.front() != '-' &&
           word.back() != '-' && word.find("--") == std::string::npos &&
           word.find_first_not_of("0123456789-") == std::string::npos;
}

std::string trimmed(std::string const& text) {
    auto const first = text.find_first_not_of(kBlanks);
    return first == std::string::npos
               ? std::string()
               : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string firstWord(std::string const& text) {
    return text.substr(0, text.find_first_of(kBlanks));
}

std::string lastWord(std::string const& text) {
    auto const blank = text.find_last_of(kBlanks);
    return blank == std::string::npos ? text : text.substr(blank + 1);
}

void dropFirst(std::string& text, std::string const& word) {
    text = trimmed(text.substr(word.size()));
}

void dropLast(std::string& text, std::string const& word) {
    text = trimmed(text.substr(0, text.size() - word.size()));
}

std::optional<bool> hiddenBy(std::string const& mark) {
    return mark == "hidden"  ? std::optional(true)
           : mark == "shown" ? std::optional(false)
                             : std::nullopt;
}

// Takes number and mark off the beginning; false when the number is too large. A name may be a
// number, so what stands alone is no number.
bool takeFront(std::string& rest, TextLine& line) {
    std::string const word = firstWord(rest);
    auto const number = wholeNumber(word);
    bool const isNumber =
        !word.empty() &&
        word.find_first_not_of("0123456789", word[0] == '-' ? 1 : 0) == std::string::npos &&
        word != "-";
    if (isNumber && word.size() < rest.size()) {
        if (!number || *number > std::numeric_limits<std::int32_t>::max() ||
            *number < std::numeric_limits<std::int32_t>::min())
            return false;
        line.number = number;
        dropFirst(rest, word);
    }
    line.isUnnumbered = word == kNone && hiddenBy(firstWord(trimmed(rest.substr(word.size()))));
    if (line.isUnnumbered)
        dropFirst(rest, word);
    std::string const mark = firstWord(rest);
    line.hidden = hiddenBy(mark);
    if (line.hidden)
        dropFirst(rest, mark);
    return true;
}

void takeBack(std::string& rest, TextLine& line) {
    std::string word = lastWord(rest);
    if (word.compare(0, 3, "id:") == 0) {
        line.key = wholeNumber(word.substr(3));
        if (!line.key)
            return;
        dropLast(rest, word);
        word = lastWord(rest);
        line.service = squeezed(rest);
        if (word == kNone)
            dropLast(rest, word);
    }
    if (!word.empty() && isTriplet(word)) {
        line.triplet = word;
        dropLast(rest, word);
    }
}

struct Widths {
    std::size_t number = 0, name = 0, triplet = 1;
};

std::string formatLine(Entry const& entry, Widths const& widths) {
    std::string const number = entry.number ? numberText(entry) : kNone;
    std::size_t const blanks = widths.number - std::min(widths.number, number.size());
    return std::string(blanks, ' ') + number + "  " +
           padded(entry.deleted ? "hidden" : "shown", kMarkWidth) + "  " +
           padded(displayText(entry.name), widths.name) + "  " +
           padded(entry.triplet.empty() ? kNone : displayText(entry.triplet), widths.triplet) +
           "  id:" + std::to_string(entry.serviceId);
}

}  // namespace

std::string squeezed(std::string const& text) {
    std::string words;
    bool isApart = false;
    for (char const c : text) {
        bool const isBlank = std::string(kBlanks).find(c) != std::string::npos;
        if (!isBlank)
            words.append(isApart ? " " : "").push_back(c);
        isApart = isBlank && !words.empty();
    }
    return words;
}

std::string serviceText(Entry const& entry) {
    return squeezed(displayText(entry.name) + " " +
                    (entry.triplet.empty() ? kNone : displayText(entry.triplet)));
}

std::string withoutByteOrderMark(std::string const& text) {
    return text.compare(0, sizeof kByteOrderMark - 1, kByteOrderMark) == 0
               ? text.substr(sizeof kByteOrderMark - 1)
               : text;
}

std::string formatEntry(Entry const& entry) { return formatLine(entry, Widths()); }

std::string formatList(std::string const& listName, std::vector<Entry> const& entries) {
    Widths widths;
    for (Entry const& entry : entries) {
        widths.number = std::max({widths.number, numberText(entry).size(), sizeof kNone - 1});
        widths.name = std::max(widths.name, displayWidth(displayText(entry.name)));
        widths.triplet = std::max(widths.triplet, entry.triplet.size());
    }
    std::ostringstream text;
    text << "# " << displayText(listName) << ": " << entries.size() << " entries\n" << kExplanation;
    for (Entry const& entry : entries)
        text << formatLine(entry, widths) << "\n";
    return text.str();
}

ListText parseList(std::string const& text) {
    ListText result;
    std::istringstream lines(withoutByteOrderMark(text));
    int count = 0;
    for (std::string content; std::getline(lines, content);) {
        TextLine line;
        line.line = ++count;
        std::string rest = trimmed(content);
        if (rest.empty() || rest[0] == '#')
            continue;
        if (!takeFront(rest, line)) {
            result.errors.push_back({count, "the channel number is too large"});
            continue;
        }
        takeBack(rest, line);
        line.name = rest;
        if (line.name.empty() && line.triplet.empty() && !line.key)
            result.errors.push_back({count, "the line names no service"});
        else
            result.lines.push_back(std::move(line));
    }
    return result;
}

std::string explainErrors(std::string const& file, std::vector<TextError> errors) {
    std::stable_sort(errors.begin(), errors.end(),
                     [](TextError const& a, TextError const& b) { return a.line < b.line; });
    std::string text;
    for (TextError const& error : errors) {
        text += (text.empty() ? "" : "\n") + file + ":" + std::to_string(error.line) + ": " +
                error.sentence;
    }
    return text;
}

}  // namespace channel_lists
