#include "editing/text_edit.h"

#include <unistd.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "failure.h"
#include "lists/difference.h"
#include "lists/list_csv.h"
#include "lists/reserved_numbers.h"
#include "lists/text_order.h"
#include "output/differences.h"
#include "text/display_text.h"

namespace tool {
namespace {

constexpr char kErrorMark[] = "#! ";

std::string readText(std::string const& file) {
    std::ifstream stored;
    if (file != "-")
        stored.open(file);
    std::istream& in = file == "-" ? std::cin : stored;
    std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad() || (file != "-" && !stored.is_open()))
        throw Failure("cannot read " + file);
    return text;
}

TextOrder orderOf(List const& list, std::vector<Entry> const& before, std::string const& text) {
    std::vector<Entry> const joining =
        list.favIndex != 0 ? readEntries(allServicesList().uuid).entries : std::vector<Entry>();
    return orderByText(list, before, joining, reservedNumbers(list),
                       isCsv(text) ? parseCsv(text) : parseList(text));
}

std::vector<Entry> accept(TextOrder&& order) {
    for (std::string const& note : order.notes)
        std::cerr << "channellist: " << displayText(note) << "\n";
    return std::move(order.entries);
}

// Without the comments of an earlier round.
std::string withoutErrors(std::string const& text) {
    std::istringstream lines(text);
    std::string kept;
    for (std::string line; std::getline(lines, line);)
        if (line.compare(0, sizeof kErrorMark - 1, kErrorMark) != 0)
            kept += line + "\n";
    return kept;
}

// The errors stand above the lines that they tell of.
std::string withErrors(std::string const& text, std::vector<TextError> const& errors) {
    std::istringstream lines(text);
    std::string marked = std::string(kErrorMark) + "Nothing is written yet; errors stand below.\n";
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
        ++count;
        for (TextError const& error : errors)
            if (error.line == count)
                marked += kErrorMark + error.sentence + "\n";
        marked += line + "\n";
    }
    return marked;
}

}  // namespace

std::vector<Entry> contentFromFile(List const& list, std::vector<Entry> const& before,
                                   std::string const& file) {
    TextOrder order = orderOf(list, before, readText(file));
    if (!order.errors.empty()) {
        throw Failure("nothing is written:\n" +
                      explainErrors(file == "-" ? "input" : file, order.errors));
    }
    return accept(std::move(order));
}

std::optional<std::vector<Entry>> contentFromEditor(List const& list,
                                                    std::vector<Entry> const& before,
                                                    EditorFile& file) {
    std::string shown = formatList(displayName(list), before);
    std::string edited = file.edit(shown);
    if (edited == shown || edited.empty())
        return std::nullopt;
    for (;;) {
        std::string const text = withoutErrors(edited);
        TextOrder order = orderOf(list, before, text);
        if (order.errors.empty()) {
            if (readEntries(list.uuid).entries != before) {
                throw Failure(displayName(list) +
                              " has changed in the database meanwhile; nothing is written");
            }
            return accept(std::move(order));
        }
        shown = withErrors(text, order.errors);
        edited = file.edit(shown);
        if (edited == shown || edited.empty())
            throw Failure("nothing is written:\n" + explainErrors("text", order.errors));
    }
}

bool confirm(List const& list, std::vector<Entry> const& before, std::vector<Entry> const& after) {
    if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0)
        return true;
    printDifferences(differences({{list.uuid, displayName(list), before}},
                                 {{list.uuid, displayName(list), after}}));
    std::cout.flush();
    std::cerr << "Write this to " << displayText(displayName(list)) << "? [y/N] ";
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

}  // namespace tool
