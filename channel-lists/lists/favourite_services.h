// Finds the services that the lines of a channel list mean, in a database of any scan.
#pragma once

#include <channel-database/channels_conf.h>
#include <channellist-access/db_access.h>

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace channel_lists {

class FavouriteServices {
  public:
    // Those of the list of all services.
    FavouriteServices();

    struct Match {
        ResultRow const* service = nullptr;
        bool isByName = false;  // no service has the channel's triplet, one alone its name and kind
    };
    // By the DVB triplet; among several delivery, satellite frequency and name choose, and among
    // those that are alike in all the highest `preference`.
    Match find(channel_database::Channel const& channel,
               std::function<int(ResultRow const&)> const& preference) const;

  private:
    using Triplet = std::tuple<std::int64_t, std::int64_t, std::int64_t>;

    std::vector<ResultRow> services_;
    std::multimap<Triplet, ResultRow const*> byTriplet_;
    std::multimap<std::string, ResultRow const*> byName_;  // and kind
};

}  // namespace channel_lists
