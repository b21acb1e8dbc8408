// channellist export LIST...
#include <channel-database/channel_list.h>
#include <channel-database/dvbv5.h>
#include <channel-database/enigma2.h>
#include <channel-database/export.h>
#include <channel-database/m3u.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <charconv>
#include <iostream>
#include <map>
#include <set>

#include "commands/commands.h"
#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "lists/list_content.h"
#include "lists/list_csv.h"
#include "lists/list_text.h"
#include "output/list_page.h"
#include "services/service_reader.h"
#include "services/service_words.h"
#include "text/display_text.h"

namespace tool {
namespace {

using namespace channel_database;
using channel_lists::List;

constexpr char const* kTuning =
    "SELECT UriView.Uri, ShortName FROM UriView JOIN Service ON Service.Pid = UriView.Pid"
    " WHERE UriView.Pid = ?";

struct Options {
    std::vector<std::string> lists;
    std::string format = "vdr";
    std::string like;
};

// What the format did not take, over all lists.
struct Leftovers {
    std::map<std::string, int> losses;  // what has no place in it
    std::set<std::string> ids;
    int repeated = 0;
    int comments = 0;
};

struct Export {
    List list;
    std::vector<ResultRow> services;
    Options const& options;
    Leftovers& leftovers;
};

StoredService storedService(ResultRow const& service, Query& tuning) {
    unsigned const attributes = attributesOf(service);
    tuning.reset();
    tuning.bind(std::strtoll(service[SERVICE_FIELD_PID].c_str(), nullptr, 10));
    bool const isStored = tuning.next();
    return {displayText(service[SERVICE_FIELD_CAPTION]),
            isStored ? displayText(tuning.text(1)) : std::string(),
            isStored ? tuning.text(0) : std::string(),
            kindOf(service) == "radio",
            (attributes & kScrambled) != 0,
            (attributes & kHighDefinition) != 0};
}

std::optional<Channel> channelOf(ResultRow const& service, Query& tuning, Leftovers& leftovers) {
    StoredService const stored = storedService(service, tuning);
    auto channel = channel_database::channelOf(stored);
    if (channel)
        for (std::string const& loss : lossesOf(stored))
            ++leftovers.losses[loss];
    return channel;
}

// VDR reads no line whose service id is 0.
bool isForVdr(std::optional<Channel> const& channel, Entry const& entry) {
    return channel && channel->serviceId != 0 && entry.number.value_or(0) >= 1;
}

// What stands behind the other ids in the uuid of a service that an import made.
int radioIdIn(std::string const& uuid, std::string const& id) {
    int number = 0;
    if (uuid.compare(0, id.size() + 1, id + "-") == 0)
        std::from_chars(uuid.data() + id.size() + 1, uuid.data() + uuid.size(), number);
    return number > 0 && number <= 0xFFFF ? number : 0;
}

void noteVdrLosses(Channel const& channel, Channel const& written, Leftovers& leftovers) {
    if (written.frequencyInKHz() != channel.frequencyInKHz())
        ++leftovers.losses["a satellite's fraction of a MHz"];
    if ((channel.name + channel.shortName).find_first_of("|;") != std::string::npos)
        ++leftovers.losses["a | or ; in a name"];
}

std::string vdrLine(ResultRow const& service, Query& tuning, std::int64_t& nextNumber,
                    Leftovers& leftovers) {
    Entry const entry = entryOf(service);
    auto const channel = channelOf(service, tuning, leftovers);
    if (!isForVdr(channel, entry)) {
        ++leftovers.comments;
        return formatOther(formatEntry(entry));
    }
    Channel written = inVdrUnits(*channel);
    written.radioId = radioIdIn(service[SERVICE_FIELD_UUID], written.id());
    noteVdrLosses(*channel, written, leftovers);
    if (entry.deleted) {
        ++leftovers.comments;
        return formatHidden(written, static_cast<int>(*entry.number));
    }
    if (!leftovers.ids.insert(written.id()).second)
        ++leftovers.repeated;
    std::string const mark = *entry.number == nextNumber ? "" : ":@" + numberText(entry) + "\n";
    nextNumber = *entry.number + 1;
    return mark + formatChannel(written);
}

// Each list counts from 1; where a number is not the next one, ":@N" says so.
void writeVdr(Export const& job) {
    Query tuning(db, kTuning);
    if (!isAllList(job.list))  // of which every channel is, whatever its group
        std::cout << formatGroup(displayText(displayName(job.list))) << "\n";
    std::int64_t nextNumber = 1;
    for (ResultRow const& service : job.services)
        std::cout << vdrLine(service, tuning, nextNumber, job.leftovers) << "\n";
}

// Enigma2 knows neither numbers nor hidden entries, and no DVB-C2.
std::vector<Channel> enigma2Channels(Export const& job) {
    Query tuning(db, kTuning);
    std::vector<Channel> channels;
    for (ResultRow const& service : job.services) {
        auto channel = channelOf(service, tuning, job.leftovers);
        if (!channel || isDeleted(service) || channel->delivery() == Delivery::DvbC2)
            continue;
        channels.push_back(std::move(*channel));
    }
    if (channels.size() != job.services.size())
        std::cerr << "channellist: " << displayText(displayName(job.list)) << ": left out "
                  << job.services.size() - channels.size()
                  << " entries that are hidden or no service that Enigma2 knows\n";
    return channels;
}

// Gives the channels the namespaces of the receiver's own lamedb.
void takeNamespaces(std::vector<Channel>& channels, Export const& job) {
    ChannelsConf const lamedb = readChannelList(job.options.like);
    Namespaces const namespaces(lamedb.channels);
    std::size_t found = 0;
    for (Channel& channel : channels) {
        channel.place = namespaces.of(channel);
        found += channel.place ? 1 : 0;
        if (!channel.place)
            std::cerr << "channellist: " << displayText(job.options.like)
                      << " has no transponder for " << channel.name << "\n";
    }
    std::cerr << "channellist: " << found << " of " << channels.size()
              << " entries have the namespace of " << displayText(job.options.like) << "\n";
}

void writeBouquet(Export const& job) {
    std::vector<Channel> channels = enigma2Channels(job);
    if (!job.options.like.empty())
        takeNamespaces(channels, job);
    std::cout << formatBouquetName(displayText(displayName(job.list))) << "\n";
    for (Channel const& channel : channels)
        std::cout << formatBouquetEntry(channel) << "\n#DESCRIPTION " << channel.name << "\n";
}

void writeLamedb(Export const& job) { std::cout << formatLamedb(enigma2Channels(job)); }

void noteLeftOut(Export const& job, std::size_t written, char const* what) {
    if (written != job.services.size())
        std::cerr << "channellist: " << displayText(displayName(job.list)) << ": left out "
                  << job.services.size() - written << " entries that are hidden or " << what
                  << "\n";
}

void writeM3u(Export const& job) {
    Query tuning(db, kTuning);
    std::string const group = isAllList(job.list) ? "" : displayText(displayName(job.list));
    std::size_t written = 0;
    for (ResultRow const& service : job.services) {
        auto channel = streamOf(storedService(service, tuning));
        if (!channel || isDeleted(service))
            continue;
        channel->number = static_cast<int>(entryOf(service).number.value_or(0));
        std::cout << formatM3u(*channel, group);
        ++written;
    }
    noteLeftOut(job, written, "no IP channel");
}

void noteDvbv5Losses(Channel const& channel, Leftovers& leftovers) {
    if (channel.name.find_first_of("[]") != std::string::npos)
        ++leftovers.losses["a [ or ] in a name"];
    if (channel.isEncrypted())
        ++leftovers.losses["that a channel is scrambled"];
}

void writeDvbv5(Export const& job) {
    Query tuning(db, kTuning);
    std::size_t written = 0;
    for (ResultRow const& service : job.services) {
        auto channel = channelOf(service, tuning, job.leftovers);
        if (!channel || isDeleted(service) || channel->delivery() == Delivery::DvbC2)
            continue;
        channel->number = static_cast<int>(entryOf(service).number.value_or(0));
        noteDvbv5Losses(*channel, job.leftovers);
        std::cout << formatDvbv5(*channel);
        ++written;
    }
    noteLeftOut(job, written, "no service that libdvbv5 knows");
}

void writePage(Export const& job) {
    std::vector<PageEntry> entries;
    for (ResultRow const& service : job.services)
        if (!isDeleted(service))
            entries.push_back({numberText(entryOf(service)),
                               displayText(service[SERVICE_FIELD_CAPTION]),
                               kindOf(service) == "radio"});
    std::cout << formatPageList(displayText(displayName(job.list)), entries);
}

void writeCsv(Export const& job) { std::cout << formatCsv(job.services); }

struct Format {
    char const* name;
    bool takesSeveral;
    void (*write)(Export const& job);
    char const* beginning = "";
    char const* end = "";
};

Format const kFormats[] = {{"vdr", true, writeVdr},
                           {"enigma2", false, writeBouquet},
                           {"lamedb", false, writeLamedb},
                           {"csv", false, writeCsv},
                           {"m3u", true, writeM3u, kM3uBeginning},
                           {"dvbv5", false, writeDvbv5},
                           {"html", true, writePage, kPageBeginning, kPageEnd}};

Format const& formatOf(std::string const& name) {
    for (Format const& format : kFormats)
        if (name == format.name)
            return format;
    throw Failure("'" + name + "' is none of vdr, enigma2, lamedb, csv, m3u, dvbv5 and html",
                  kUsage);
}

// Once, at the end, so that it is not lost between the lists.
void tell(Leftovers const& left) {
    if (left.comments != 0)
        std::cerr << "channellist: " << left.comments
                  << " entries that are hidden or no channel of VDR are lines that it takes for "
                     "groups\n";
    if (left.repeated != 0)
        std::cerr << "channellist: " << left.repeated
                  << " channels have the source and ids of one before them; VDR drops them\n";
    for (auto const& [loss, count] : left.losses)
        std::cerr << "channellist: no place for " << loss << ": " << count << " channels\n";
}

int run(std::string const& database, Options const& options) {
    Format const& format = formatOf(options.format);
    if (options.lists.size() > 1 && !format.takesSeveral)
        throw Failure("--format " + options.format + " takes one list: a file holds no more",
                      kUsage);
    Session const session(database);
    if (!options.like.empty() && options.format != "enigma2")
        throw Failure("--like is for --format enigma2, whose entries have namespaces", kUsage);
    FrozenDatabase const frozen;
    std::vector<List> lists;
    for (std::string const& word : options.lists)
        lists.push_back(findList(word));
    // Nothing but the next group ends one, so what stands in none comes first.
    std::stable_partition(lists.begin(), lists.end(), isAllList);
    Leftovers leftovers;
    std::cout << format.beginning;
    for (List const& list : lists) {
        Rows services = readServices(list.uuid);
        format.write({list, std::move(services.rows), options, leftovers});
        if (!services.complete)
            throw Failure("not all services could be read; \"channellist check\" tells why");
    }
    std::cout << format.end;
    tell(leftovers);
    return kSuccess;
}

}  // namespace

void addExportCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("export", "Prints lists as channel lists of other programs")
        .arguments("LIST", options->lists, 1, kAnyNumber, "uuids, or names that only one list has")
        .option(
            "--format", options->format,
            "vdr (one group a list), enigma2 (a bouquet), lamedb (an Enigma2 receiver's whole "
            "list), csv (a table), m3u (IP channels), dvbv5 (libdvbv5's) or html (a page to print)")
        .option("--like", options->like,
                "of enigma2: a lamedb of the receiver, whose namespaces the entries get")
        .footer(
            "\"import --favourites\" brings vdr lists back as they were, \"edit LIST --from\" a\n"
            "table; \"import\" makes the same database again of all lists together, those of\n"
            "\"channellist folders\" and \"all\". In vdr lists hidden entries, and those that are "
            "no\n"
            "channel there, stand in lines that begin with \":#channellist\", which VDR takes for\n"
            "groups. What the format, or the database, cannot\n"
            "carry: pids and access systems (TV services get the video pid 8191, none, scrambled\n"
            "ones the access id FFFF), and in vdr lists fractions of a satellite's MHz. Enigma2's\n"
            "carry no numbers and no hidden entries; \"import\" makes the same database again of\n"
            "the lamedb of a database that was made of one.\n\n"
            "Examples:\n"
            "  channellist export FAV1 FAV2 FAV3 FAV4 > favourites.conf\n"
            "  channellist export --format enigma2 FAV1 > userbouquet.fav1.tv\n"
            "  channellist export --format lamedb all > lamedb\n"
            "  channellist export --format csv all > all.csv\n"
            "  channellist export --format html FAV1 FAV2 > channels.html")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
