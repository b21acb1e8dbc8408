#include "editing/question.h"

#include <unistd.h>

#include <fstream>
#include <iostream>

namespace tool {

bool canAsk() { return isatty(STDIN_FILENO) == 1; }

bool ask(std::function<void(std::ostream&)> const& show, std::string const& question) {
    std::cout.flush();
    std::ofstream terminal;
    if (isatty(STDERR_FILENO) == 0)
        terminal.open("/dev/tty");
    std::ostream& out = terminal.is_open() ? terminal : std::cerr;
    show(out);
    out << question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

}  // namespace tool
