#include "text/near_names.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <utility>

#include "text/folded_text.h"

namespace channel_lists {
namespace {

constexpr std::size_t kMost = 4;
constexpr std::size_t kLongest = 100;  // bytes; what is longer is no slip, and takes its time
constexpr std::size_t kTelling = 4;    // characters of a word that says more than "HD"

// Letters and digits alone, of any script.
std::string bare(std::string const& foldedText) {
    std::string text;
    for (char const c : foldedText)
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (c & '\x80') != 0)
            text += c;
    return text;
}

// From the name or, unless that says little, the nearest of its words.
std::size_t distanceTo(std::string const& foldedName, std::string const& word) {
    std::size_t distance = editDistance(foldedName, word);
    std::istringstream parts(foldedName);
    for (std::string part; word.size() >= kTelling && parts >> part;)
        distance = std::min(distance, editDistance(part, word));
    return distance;
}

}  // namespace

std::string didYouMean(std::string const& word, std::vector<std::string> const& names) {
    if (word.size() > kLongest)
        return "";
    std::string const meant = folded(word);
    std::string const part = bare(meant);
    std::size_t const slips = word.size() <= 4 ? 1 : std::max<std::size_t>(2, word.size() / 4);
    std::set<std::pair<std::size_t, std::string>> near;
    for (std::string const& name : names) {
        if (name.size() > kLongest)
            continue;
        std::string const called = folded(name);
        bool const isHeld = part.size() > 1 && bare(called).find(part) != std::string::npos;
        std::size_t const whole = distanceTo(called, meant);
        std::size_t const distance = isHeld ? std::min<std::size_t>(whole, 1) : whole;
        if (distance <= slips && name != word && !name.empty())
            near.emplace(distance, name);
    }
    std::string text;
    std::size_t count = 0;
    for (auto const& each : near)
        if (count++ < kMost)
            text += (text.empty() ? "; did you mean '" : " or '") + each.second + "'";
    return text.empty() ? text : text + "?";
}

}  // namespace channel_lists
