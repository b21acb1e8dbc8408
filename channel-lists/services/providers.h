// Who broadcasts the services, where the database tells it.
#pragma once

#include <map>
#include <string>

namespace channel_lists {

// Whether it does: some sets keep a column of their own for it.
bool hasProviders();

// By the key of the service. Throws Failure when the database does not tell.
std::map<unsigned int, std::string> readProviders();

}  // namespace channel_lists
