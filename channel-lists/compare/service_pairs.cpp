#include "compare/service_pairs.h"

#include <algorithm>
#include <vector>

namespace channel_lists {
namespace {

// "" when a part is missing.
std::string identity(std::vector<std::string> const& parts) {
    std::string text;
    for (std::string const& part : parts) {
        if (part.empty())
            return "";
        text += part + '\n';
    }
    return text;
}

// All that is told of a service: those that share it are paired in their order.
std::string everything(ComparedService const& s) {
    return identity({s.triplet, s.name, s.transponder});
}

// From the surest to the least sure.
constexpr std::string (*kIdentities[])(ComparedService const&) = {
    [](ComparedService const& s) {
        return identity({s.uuid, s.triplet, s.name});
    },
    everything,
    [](ComparedService const& s) {
        return identity({s.triplet, s.delivery, s.name});
    },
    [](ComparedService const& s) {
        return identity({s.uuid, s.name});
    },
    [](ComparedService const& s) {
        return identity({s.uuid, s.triplet});
    },
    [](ComparedService const& s) {
        return identity({s.triplet, s.delivery});
    },
    [](ComparedService const& s) { return s.triplet.empty() ? s.uuid : ""; },
    [](ComparedService const& s) {
        return identity({s.name, s.kind, s.delivery});
    },
    [](ComparedService const& s) {
        return identity({s.name, s.kind});
    },
};

}  // namespace

ServicePairs::ServicePairs(ComparedContent const& old, ComparedContent const& now) {
    for (auto const& [key, service] : old.services)
        free_.insert(key);
    for (Identity const identityOf : kIdentities)
        match(old, now, identityOf);
    unsigned int next = old.services.empty() ? 0 : old.services.rbegin()->first;
    for (auto const& [key, service] : now.services)
        if (shared_.emplace(key, next + 1).second)
            came_[++next] = key;
}

void ServicePairs::match(ComparedContent const& old, ComparedContent const& now,
                         Identity identityOf) {
    std::map<std::string, std::vector<unsigned int>> olds, news;
    for (unsigned int const key : free_)
        olds[identityOf(old.services.at(key))].push_back(key);
    for (auto const& [key, service] : now.services)
        if (shared_.count(key) == 0)
            news[identityOf(service)].push_back(key);
    for (auto const& [word, keys] : news) {
        auto const found = olds.find(word);
        if (word.empty() || found == olds.end())
            continue;
        std::size_t const pairs = std::min(keys.size(), found->second.size());
        if (std::max(keys.size(), found->second.size()) > 1 && identityOf != everything)
            continue;
        for (std::size_t i = 0; i < pairs; ++i) {
            shared_[keys[i]] = found->second[i];
            free_.erase(found->second[i]);
        }
    }
}

unsigned int ServicePairs::storedKey(unsigned int sharedKey) const {
    auto const came = came_.find(sharedKey);
    return came == came_.end() ? sharedKey : came->second;
}

}  // namespace channel_lists
