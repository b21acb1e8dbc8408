// channellist export LIST...
#include <channel-database/enigma2.h>
#include <channel-database/export.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "lists/list_content.h"
#include "lists/list_csv.h"
#include "lists/list_text.h"
#include "services/service_reader.h"
#include "services/service_words.h"
#include "text/display_text.h"

namespace tool {
namespace {

using namespace channel_database;
using channel_lists::List;

constexpr char const* kUri = "SELECT Uri FROM UriView WHERE Pid = ?";

std::string tuningUri(Query& uris, std::string const& servicePid) {
    uris.reset();
    uris.bind(std::strtoll(servicePid.c_str(), nullptr, 10));
    return uris.next() ? uris.text(0) : std::string();
}

std::optional<Channel> channelOf(ResultRow const& service, Query& uris) {
    unsigned const attributes = attributesOf(service);
    return channel_database::channelOf({displayText(service[SERVICE_FIELD_CAPTION]),
                                        tuningUri(uris, service[SERVICE_FIELD_PID]),
                                        kindOf(service) == "radio", (attributes & kScrambled) != 0,
                                        (attributes & kHighDefinition) != 0});
}

std::string lineOf(ResultRow const& service, Query& uris, std::int64_t& nextNumber) {
    Entry const entry = entryOf(service);
    auto channel = channelOf(service, uris);
    if (!channel || entry.number.value_or(0) < 1)
        return formatOther(formatEntry(entry));
    channel = inVdrUnits(*channel);
    if (entry.deleted)
        return formatHidden(*channel, static_cast<int>(*entry.number));
    std::string const mark = *entry.number == nextNumber ? "" : ":@" + numberText(entry) + "\n";
    nextNumber = *entry.number + 1;
    return mark + formatChannel(*channel);
}

// Each list counts from 1; where a number is not the next one, ":@N" says so.
void writeVdr(List const& list, std::vector<ResultRow> const& services) {
    Query uris(db, kUri);
    if (!isAllList(list))  // of which every channel is, whatever its group
        std::cout << formatGroup(displayText(displayName(list))) << "\n";
    std::int64_t nextNumber = 1;
    for (ResultRow const& service : services)
        std::cout << lineOf(service, uris, nextNumber) << "\n";
}

// Enigma2 knows neither numbers nor hidden entries, and no DVB-C2.
std::vector<Channel> enigma2Channels(List const& list, std::vector<ResultRow> const& services) {
    Query uris(db, kUri);
    std::vector<Channel> channels;
    for (ResultRow const& service : services) {
        auto channel = channelOf(service, uris);
        if (!channel || isDeleted(service) || channel->delivery() == Delivery::DvbC2)
            continue;
        channels.push_back(std::move(*channel));
    }
    if (channels.size() != services.size())
        std::cerr << "channellist: " << displayText(displayName(list)) << ": left out "
                  << services.size() - channels.size()
                  << " entries that are hidden or no service that Enigma2 knows\n";
    return channels;
}

void writeBouquet(List const& list, std::vector<ResultRow> const& services) {
    std::cout << formatBouquetName(displayText(displayName(list))) << "\n";
    for (Channel const& channel : enigma2Channels(list, services))
        std::cout << formatBouquetEntry(channel) << "\n#DESCRIPTION " << channel.name << "\n";
}

void writeLamedb(List const& list, std::vector<ResultRow> const& services) {
    std::cout << formatLamedb(enigma2Channels(list, services));
}

void writeCsv(List const& /*list*/, std::vector<ResultRow> const& services) {
    std::cout << formatCsv(services);
}

struct Format {
    char const* name;
    bool takesSeveral;
    void (*write)(List const& list, std::vector<ResultRow> const& services);
};

constexpr Format kFormats[] = {{"vdr", true, writeVdr},
                               {"enigma2", false, writeBouquet},
                               {"lamedb", false, writeLamedb},
                               {"csv", false, writeCsv}};

Format const& formatOf(std::string const& name) {
    for (Format const& format : kFormats)
        if (name == format.name)
            return format;
    throw Failure("'" + name + "' is none of vdr, enigma2, lamedb and csv", kUsage);
}

struct Options {
    std::vector<std::string> lists;
    std::string format = "vdr";
};

int run(std::string const& database, Options const& options) {
    Format const& format = formatOf(options.format);
    if (options.lists.size() > 1 && !format.takesSeveral)
        throw Failure("--format " + options.format + " takes one list: a file holds no more",
                      kUsage);
    Session const session(database);
    std::vector<List> lists;
    for (std::string const& word : options.lists)
        lists.push_back(findList(word));
    // Nothing but the next group ends one, so what stands in none comes first.
    std::stable_partition(lists.begin(), lists.end(), isAllList);
    for (List const& list : lists) {
        Rows const services = readServices(list.uuid);
        format.write(list, services.rows);
        if (!services.complete)
            throw Failure("not all services could be read; \"channellist check\" tells why");
    }
    return kSuccess;
}

}  // namespace

void addExportCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("export", "Prints lists as channel lists of other programs")
        .arguments("LIST", options->lists, 1, kAnyNumber, "uuids, or names that only one list has")
        .option("--format", options->format,
                "vdr (one group a list), enigma2 (a bouquet), lamedb (an Enigma2 receiver's whole "
                "list) or csv (a table)")
        .footer(
            "\"import --favourites\" brings vdr lists back as they were, \"edit LIST --from\" a\n"
            "table. In vdr lists hidden entries, and those that are no DVB service, stand in\n"
            "comments that begin with \"#channellist\". What the format, or the database, cannot\n"
            "carry: pids and access systems (TV services get the video pid 8191, none, scrambled\n"
            "ones the access id FFFF), and in vdr lists fractions of a satellite's MHz. Enigma2's\n"
            "carry no numbers and no hidden entries; \"import\" makes the same database again of\n"
            "the lamedb of a database that was made of one.\n\n"
            "Examples:\n"
            "  channellist export FAV1 FAV2 FAV3 FAV4 > favourites.conf\n"
            "  channellist export --format enigma2 FAV1 > userbouquet.fav1.tv\n"
            "  channellist export --format lamedb all > lamedb\n"
            "  channellist export --format csv all > all.csv")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
