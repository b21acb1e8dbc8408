// Long tables, a page at a time.
#pragma once

#include <string>

namespace tool {

// Prints the text. One that is longer than the terminal is shown by $PAGER, or else by less, unless
// "--no-pager" was given or PAGER is empty or "cat"; a less that can keeps the first `header` lines
// in sight. Where no pager starts the text is printed as it is; one that ends early is content.
void page(std::string const& text, int header);

}  // namespace tool
