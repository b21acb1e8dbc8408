/// Makes a channel database from a channel list.
#pragma once

#include <channel-database/builder.h>
#include <channel-database/channels_conf.h>

#include <cstddef>
#include <functional>

namespace channel_database {

/// Called after each channel with the number written and the number of all.
using ImportProgress = std::function<void(std::size_t done, std::size_t total)>;

// clang-format off
/// Writes the list into an empty database, in one transaction:
///
/// | List               | Creator                              | Uuid             | Holds                   |
/// |--------------------|--------------------------------------|------------------|-------------------------|
/// | All                | tamun.sl2.servicelist$all            | all              | every channel           |
/// | AV                 | tamun.sl2.servicelist$av             | av               | the external inputs     |
/// | FAV1 to FAV4       | User.tvFAV1 ...                      | fav1 ...         | the groups of this name |
/// | one a delivery     | servicelist://tamun.dvbt, dvbc, dvbs | dvbt, dvbc, dvbs | its channels            |
/// | Astra 19.2°E       | servicelist://tamun.Astra 19.2°E     | astra-19.2e      | channels from 19.2E     |
/// | other groups' TV   | User.tv.N (N counts such groups)     | user-tv-N        | its TV channels         |
/// | ... and radio      | User.radio.N                         | user-radio-N     | its radio channels      |
///
/// The delivery lists, the Astra list and the user lists are there when they hold a channel.
/// All, the delivery lists and the Astra list keep the channel numbers of the file; the FAV lists
/// count from 1 or from the `:@n` in them, the user lists from 1.
///
/// A channel of a group whose source, ids and transponder stand elsewhere in the file, too, is the
/// same service in a further list; within one list every line is a service of its own. Groups of
/// one name are one. A group with the name of a delivery list or of the Astra list gives the
/// numbers and hidden entries of that list, so that what was exported of all lists makes the same
/// database again; user lists have their `:@n` then, too. A service's uuid is its channel id in
/// VDR's form, "S19.2E-1-1019-10301", so that the same file always gives the same database.
///
/// Gives the number of services beside the inputs. Throws std::runtime_error and leaves the database as it was when it holds lists already or a
/// write fails.
// clang-format on
std::size_t importChannels(ChannelDatabase& database, ChannelsConf const& list,
                           ImportProgress const& progress = {});

}  // namespace channel_database
