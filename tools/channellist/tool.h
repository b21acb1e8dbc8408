// The tool speaks of lists and databases in the words of their own part.
#pragma once

namespace channel_lists {}

namespace tool {

using namespace channel_lists;

}  // namespace tool
