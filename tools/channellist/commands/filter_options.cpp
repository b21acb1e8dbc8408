#include "commands/filter_options.h"

namespace tool {

void addFilterOptions(Command& command, ServiceFilter& filter) {
    command.flag("--tv", filter.tv, "TV services alone")
        .flag("--radio", filter.radio, "radio services alone")
        .flag("--hd", filter.hd, "high definition alone")
        .flag("--free", filter.free,
              "none that the database calls scrambled; of what nobody told it knows nothing")
        .flag("--scrambled", filter.scrambled, "scrambled ones alone")
        .flag("--hidden", filter.hidden, "hidden and invisible ones alone")
        .option("--delivery", filter.delivery,
                "satellite, cable, terrestrial, analogue or IP alone")
        .option("--satellite", filter.satellite, "of the satellite with this number")
        .option("--network", filter.network, "of the original network with this number")
        .option("--frequency", filter.frequency, "on this frequency, in MHz")
        .option("--provider", filter.provider,
                "of broadcasters whose names hold this, where the database tells them")
        .option("--match", filter.match, "names that hold this, whatever its case")
        .option("--sort", filter.sort, "by number, name or triplet (the order of the set)");
}

}  // namespace tool
