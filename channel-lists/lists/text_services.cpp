#include "lists/text_services.h"

#include "text/display_text.h"

namespace channel_lists {
namespace {

using Found = std::vector<Entry const*>;

Found found(std::multimap<std::string, Entry const*> const& places, std::string const& word) {
    Found result;
    auto const [first, last] = places.equal_range(word);
    for (auto place = first; place != last; ++place)
        result.push_back(place->second);
    return result;
}

std::string several(std::string const& word, Found const& services) {
    std::string text = "several services are meant by '" + word + "':";
    for (Entry const* service : services)
        text +=
            (service == services.front() ? " id:" : ", id:") + std::to_string(service->serviceId);
    return text;
}

std::string keyText(TextLine const& line) { return "id:" + std::to_string(*line.key); }

}  // namespace

TextServices::TextServices(std::vector<Entry> const& stored, std::vector<Entry> const& all) {
    for (Entry const& entry : stored)
        add(entry);
    for (Entry const& entry : all)
        add(entry);
}

void TextServices::add(Entry const& entry) {
    if (!byKey_.emplace(entry.serviceId, &entry).second)
        return;
    if (!entry.triplet.empty())
        byTriplet_.emplace(entry.triplet, &entry);
    byName_.emplace(displayText(entry.name), &entry);
}

Entry const* TextServices::withKey(TextLine const& line) const {
    auto const place = line.key ? byKey_.find(*line.key) : byKey_.end();
    return place == byKey_.end() ? nullptr : place->second;
}

Entry const* TextServices::find(TextLine const& line, std::string& error) const {
    Entry const* const keyed = withKey(line);
    if (line.name.empty() && line.triplet.empty()) {
        if (keyed == nullptr)
            error = "no service has the key " + keyText(line);
        return keyed;
    }
    Found const tripled = found(byTriplet_, line.triplet);
    if (keyed != nullptr && !line.triplet.empty() && keyed->triplet == line.triplet)
        return keyed;
    if (tripled.size() == 1)
        return tripled[0];
    Found named;
    for (Entry const* service : tripled.empty() ? found(byName_, line.name) : tripled)
        if (displayText(service->name) == line.name)
            named.push_back(service);
    if (tripled.empty() && keyed != nullptr && displayText(keyed->name) == line.name)
        return keyed;
    if (named.size() == 1)
        return named[0];
    std::string const word = line.name.empty() ? line.triplet : line.name;
    Found const& candidates = named.empty() ? tripled : named;
    error = candidates.empty()
                ? "no service fits '" + word + "'" +
                      (keyed == nullptr
                           ? ""
                           : "; " + keyText(line) + " is " + displayText(keyed->name) + " here")
                : several(word, candidates);
    return nullptr;
}

}  // namespace channel_lists
