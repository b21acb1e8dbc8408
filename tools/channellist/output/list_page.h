// Lists as a page to print: HTML that stands alone.
#pragma once

#include <string>
#include <vector>

namespace tool {

struct PageEntry {
    std::string number;
    std::string name;
    bool isRadio = false;
};

extern char const* const kPageBeginning;
extern char const* const kPageEnd;

// A heading, and the entries in columns.
std::string formatPageList(std::string const& name, std::vector<PageEntry> const& entries);

}  // namespace tool
