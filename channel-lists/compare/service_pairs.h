// Which services of two databases are the same.
#pragma once

#include <map>
#include <set>
#include <string>

#include "compare/compared_content.h"

namespace channel_lists {

// Keys that both databases share: a new service has that of its old one, or one that no old service
// has. Scans give the keys anew, and some the uuids, too: nothing of a service is believed alone
// but a triplet of one delivery, and a name that one service alone has.
class ServicePairs {
  public:
    ServicePairs(ComparedContent const& old, ComparedContent const& now);

    unsigned int sharedKey(unsigned int newKey) const { return shared_.at(newKey); }
    // The key in the new database where the service came, else in the old one.
    unsigned int storedKey(unsigned int sharedKey) const;

  private:
    using Identity = std::string (*)(ComparedService const&);
    void match(ComparedContent const& old, ComparedContent const& now, Identity identityOf);

    std::map<unsigned int, unsigned int> shared_;
    std::map<unsigned int, unsigned int> came_;  // shared key to the new one
    std::set<unsigned int> free_;                // old ones that are no new service's yet
};

}  // namespace channel_lists
