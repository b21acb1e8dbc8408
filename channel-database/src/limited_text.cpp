#include "limited_text.h"

#include <stdexcept>
#include <vector>

namespace channel_database {

std::string limitedText(std::istream& in, std::string const& name) {
    std::string text;
    std::vector<char> part(1U << 16U);
    while (in) {
        if (text.size() > kLargestList)
            throw std::runtime_error(name + ": larger than 64 MiB, as no channel list is");
        in.read(part.data(), static_cast<std::streamsize>(part.size()));
        text.append(part.data(), static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad())
        throw std::runtime_error("cannot read " + name + " to its end");
    return text;
}

}  // namespace channel_database
