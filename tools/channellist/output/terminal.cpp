#include "output/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include "failure.h"
#include "tool.h"

namespace tool {
namespace {

constexpr std::size_t kUsualWidth = 80;
constexpr std::size_t kIndent = 2;  // of the options and examples in a help text
constexpr char const* kSequences[] = {"", "\x1b[2m", "\x1b[1m", "\x1b[31m", "\x1b[33m"};
constexpr char kReset[] = "\x1b[0m";

bool hasColour = false;
bool isWide = false;
bool isPaged = true;

std::string environment(char const* name) {
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool isTerminal() { return isatty(STDOUT_FILENO) == 1; }

bool wantsColour() { return isTerminal() && knowsSequences() && environment("NO_COLOR").empty(); }

// Where a line that is too long goes on: below its last column, or nowhere for an example, which is
// there to be copied.
std::size_t hangOf(std::string const& line, std::size_t width) {
    std::size_t const begin = line.find_first_not_of(' ');
    std::size_t const gap = line.find("  ", begin);
    if (gap == std::string::npos && begin != 0 && begin <= kIndent)
        return std::string::npos;
    std::size_t const column = gap == std::string::npos ? begin : line.find_first_not_of(' ', gap);
    return column > width / 2 ? 2 * kIndent : column;
}

std::string wrappedLine(std::string line, std::size_t width) {
    std::size_t const hang = hangOf(line, width);
    if (hang == std::string::npos)
        return line + "\n";
    std::string result;
    while (line.size() > width) {
        std::size_t const least = std::max(line.find_first_not_of(' '), hang) + 1;
        std::size_t blank = line.rfind(' ', width);
        if (blank == std::string::npos || blank < least)
            blank = line.find(' ', std::max(width, least));
        if (blank == std::string::npos)
            break;
        result += line.substr(0, line.find_last_not_of(' ', blank) + 1) + "\n";
        line = std::string(hang, ' ') + line.substr(blank + 1);
    }
    return result + line + "\n";
}

}  // namespace

void setOutput(std::string const& color, bool wide, bool noPager) {
    if (color != "auto" && color != "always" && color != "never")
        throw Failure("'" + color + "' is none of auto, always and never", kUsage);
    hasColour = color == "always" || (color == "auto" && wantsColour());
    isWide = wide;
    isPaged = !noPager;
}

bool knowsSequences() {
    std::string const terminal = environment("TERM");
    return !terminal.empty() && terminal != "dumb";
}

std::size_t terminalWidth(int descriptor) {
    winsize size = {};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    std::string const told = environment("COLUMNS");
    std::size_t columns = 0;
    std::from_chars(told.data(), told.data() + told.size(), columns);
    return columns > 0 ? columns : kUsualWidth;
}

std::size_t lineWidth() { return isWide || !isTerminal() ? 0 : terminalWidth(STDOUT_FILENO); }

std::size_t pageHeight() {
    winsize size = {};
    bool const isTold = isTerminal() && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0;
    return isPaged && isTold && knowsSequences() ? size.ws_row : 0;
}

std::string styled(Style style, std::string const& text) {
    if (!hasColour || style == Style::Plain || text.empty())
        return text;
    return kSequences[static_cast<std::size_t>(style)] + text + kReset;
}

std::string wrapped(std::string const& help, std::size_t width) {
    std::string result;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);)
        result += wrappedLine(line, width);
    return result;
}

std::string unwrapped(std::string const& text) {
    std::string result;
    std::istringstream lines(text);
    bool goesOn = false;
    for (std::string line; std::getline(lines, line);) {
        bool const isHeading = line.find(' ') == std::string::npos;
        bool const isWords = !line.empty() && line[0] != ' ' && !isHeading;
        if (!result.empty())
            result += goesOn && isWords ? ' ' : '\n';
        result += line;
        goesOn = isWords && line.back() != ':';
    }
    return result;
}

}  // namespace tool
