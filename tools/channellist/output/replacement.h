// What is told of a database whose content was replaced.
#pragma once

#include <string>

namespace tool {

// `changes` is what bringBack gives.
void printReplacement(std::string const& file, std::string const& database,
                      std::string const& changes, bool dryRun);

}  // namespace tool
