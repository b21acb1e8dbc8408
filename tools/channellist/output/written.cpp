#include "output/written.h"

#include <iostream>

#include "failure.h"
#include "tool.h"

namespace tool {

void printWritten(std::string const& line) {
    std::cout << line << "\n";
    if (!std::cout.flush())
        throw Failure("the database is written, and flushed to the disk");
}

}  // namespace tool
