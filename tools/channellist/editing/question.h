// A question to the person at the terminal.
#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace tool {

// Whether somebody is there to answer: standard input is a terminal. What else is redirected does
// not matter.
bool canAsk();

// Shows what `show` writes and asks; anything but a yes is a no.
bool ask(std::function<void(std::ostream&)> const& show, std::string const& question);

}  // namespace tool
