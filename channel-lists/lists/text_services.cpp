#include "lists/text_services.h"

#include <algorithm>

#include "text/display_text.h"
#include "text/folded_text.h"
#include "text/near_names.h"

namespace channel_lists {
namespace {

constexpr std::size_t kMostSuggestions = 20;

using Found = std::vector<Entry const*>;

Found found(std::multimap<std::string, Entry const*> const& places, std::string const& word) {
    Found result;
    auto const [first, last] = places.equal_range(word);
    for (auto place = first; place != last; ++place)
        result.push_back(place->second);
    return result;
}

std::string keyText(TextLine const& line) { return "id:" + std::to_string(*line.key); }

bool hasName(Entry const& service, std::string const& name) {
    return squeezed(displayText(service.name)) == squeezed(name);
}

}  // namespace

TextServices::TextServices(std::vector<Entry> const& stored, std::vector<Entry> const& all) {
    for (Entry const& entry : stored)
        add(entry);
    for (Entry const& entry : all) {
        add(entry);
        inAll_.emplace(entry.serviceId, &entry);
    }
}

void TextServices::add(Entry const& entry) {
    if (!byKey_.emplace(entry.serviceId, &entry).second)
        return;
    if (!entry.triplet.empty())
        byTriplet_.emplace(entry.triplet, &entry);
    byName_.emplace(folded(entry.name), &entry);
}

Entry const* TextServices::withKey(TextLine const& line) const {
    auto const place = line.key ? byKey_.find(*line.key) : byKey_.end();
    return place == byKey_.end() ? nullptr : place->second;
}

// Those that have the name to the letter, else in whatever case.
Found TextServices::called(std::string const& name) const {
    Found const alike = found(byName_, folded(name));
    Found same;
    std::copy_if(alike.begin(), alike.end(), std::back_inserter(same),
                 [&](Entry const* service) { return hasName(*service, name); });
    return same.empty() ? alike : same;
}

// With the numbers of the list of all services, where it is at hand.
std::string TextServices::several(std::string const& word, Found const& services) const {
    std::string text = "several services are meant by '" + word + "':";
    for (Entry const* service : services) {
        auto const whole = inAll_.find(service->serviceId);
        text += (service == services.front() ? " " : ", ") +
                described(whole == inAll_.end() ? *service : *whole->second);
    }
    return text;
}

std::string TextServices::none(TextLine const& line, Entry const* keyed) const {
    std::string text = "no service fits '" + (line.name.empty() ? line.triplet : line.name) + "'";
    if (keyed != nullptr)
        return text + "; " + keyText(line) + " is " + displayText(keyed->name) + " here";
    if (line.name.empty() || ++suggestions_ > kMostSuggestions)
        return text;
    std::vector<std::string> names;
    for (auto const& [key, service] : byKey_)
        names.push_back(displayText(service->name));
    return text + didYouMean(line.name, names);
}

Found TextServices::fitting(TextLine const& line) const {
    Entry const* const keyed = withKey(line);
    Found const alone = keyed == nullptr ? Found() : Found{keyed};
    if (line.name.empty() && line.triplet.empty())
        return alone;
    if (keyed != nullptr && !line.service.empty() && line.service == serviceText(*keyed))
        return alone;
    if (keyed != nullptr && !line.triplet.empty() && keyed->triplet == line.triplet)
        return alone;
    Found const tripled = found(byTriplet_, line.triplet);
    if (tripled.size() == 1)
        return tripled;
    if (tripled.empty() && keyed != nullptr && hasName(*keyed, line.name))
        return alone;
    Found named;
    if (tripled.empty() && !line.name.empty())
        named = called(line.name);
    for (Entry const* service : tripled)
        if (hasName(*service, line.name))
            named.push_back(service);
    return named.empty() ? tripled : named;
}

Entry const* TextServices::find(TextLine const& line, std::string& error) const {
    Found const services = fitting(line);
    if (services.size() == 1)
        return services[0];
    if (!services.empty())
        error = several(line.name.empty() ? line.triplet : line.name, services);
    else if (line.name.empty() && line.triplet.empty())
        error = "no service has the key " + keyText(line);
    else
        error = none(line, withKey(line));
    return nullptr;
}

bool TextServices::hasNone(TextLine const& line) const { return fitting(line).empty(); }

}  // namespace channel_lists
