#include "output/fields.h"

#include <algorithm>
#include <sstream>

#include "failure.h"
#include "text/display_text.h"
#include "text/folded_text.h"
#include "text/near_names.h"

namespace tool {

std::string textOf(Json const& value) {
    if (value.is_string())
        return value.get<std::string>();
    if (value.is_boolean())
        return value.get<bool>() ? "yes" : "";
    if (value.is_null())
        return "";
    if (!value.is_array())
        return value.dump();
    std::vector<std::string> words;
    for (Json const& word : value)
        words.push_back(textOf(word));
    return joined(words);
}

std::vector<std::size_t> chosenKeys(std::vector<std::string> const& keys,
                                    std::string const& columns) {
    std::vector<std::size_t> places;
    std::istringstream words(columns);
    for (std::string word; std::getline(words, word, ',');) {
        if (word == "all") {
            for (std::size_t place = 0; place < keys.size(); ++place)
                places.push_back(place);
            continue;
        }
        auto const found = std::find_if(keys.begin(), keys.end(), [&](std::string const& key) {
            return folded(key) == folded(word);
        });
        if (found == keys.end())
            throw Failure("there is no column '" + word + "'" + didYouMean(word, keys) +
                              "; --columns takes all, or some of " + joined(keys),
                          kUsage);
        places.push_back(static_cast<std::size_t>(found - keys.begin()));
    }
    return places;
}

std::string columnsHelp(std::vector<std::string> const& keys) {
    return "--columns takes, with commas between them: " + joined(keys) + "; or all.\n\n";
}

}  // namespace tool
