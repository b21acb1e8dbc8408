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
#include "edit/list_content.h"
#include "edit/list_csv.h"
#include "edit/list_text.h"
#include "failure.h"
#include "output/text_table.h"
#include "services/service_reader.h"
#include "services/service_words.h"

namespace tool {
namespace {

using namespace channel_database;

std::string tuningUri(Query& uris, std::string const& servicePid) {
    uris.reset();
    uris.bind(std::strtoll(servicePid.c_str(), nullptr, 10));
    return uris.next() ? uris.text(0) : std::string();
}

std::string lineOf(ResultRow const& service, std::string const& uri, std::int64_t& nextNumber) {
    Entry const entry = entryOf(service);
    bool const encrypted = (attributesOf(service) & kScrambled) != 0;
    auto const channel = channelOf({entry.name, uri, kindOf(service) == "radio", encrypted});
    if (!channel || entry.number.value_or(0) < 1)
        return formatOther(formatEntry(entry));
    if (entry.deleted)
        return formatHidden(*channel, static_cast<int>(*entry.number));
    std::string const mark = *entry.number == nextNumber ? "" : ":@" + numberText(entry) + "\n";
    nextNumber = *entry.number + 1;
    return mark + formatChannel(*channel);
}

// Each list counts from 1; where a number is not the next one, ":@N" says so.
void writeVdr(List const& list, std::vector<ResultRow> const& services) {
    Query uris(db, "SELECT Uri FROM UriView WHERE Pid = ?");
    if (!isAllList(list))  // of which every channel is, whatever its group
        std::cout << formatGroup(displayText(displayName(list))) << "\n";
    std::int64_t nextNumber = 1;
    for (ResultRow const& service : services)
        std::cout << lineOf(service, tuningUri(uris, service[SERVICE_FIELD_PID]), nextNumber)
                  << "\n";
}

// A bouquet knows neither numbers nor hidden entries.
void writeEnigma2(List const& list, std::vector<ResultRow> const& services) {
    Query uris(db, "SELECT Uri FROM UriView WHERE Pid = ?");
    int left = 0;
    std::cout << formatBouquetName(displayText(displayName(list))) << "\n";
    for (ResultRow const& service : services) {
        auto const channel =
            channelOf({service[SERVICE_FIELD_CAPTION], tuningUri(uris, service[SERVICE_FIELD_PID]),
                       kindOf(service) == "radio", false});
        if (!channel || isDeleted(service)) {
            ++left;
            continue;
        }
        bool const isHd = (attributesOf(service) & kHighDefinition) != 0;
        std::cout << formatBouquetEntry(*channel, isHd) << "\n#DESCRIPTION "
                  << displayText(channel->name) << "\n";
    }
    if (left != 0)
        std::cerr << "channellist: " << displayName(list) << ": left out " << left
                  << " entries that are hidden or no DVB service\n";
}

void writeCsv(List const& /*list*/, std::vector<ResultRow> const& services) {
    std::cout << formatCsv(services);
}

struct Format {
    char const* name;
    bool takesSeveral;
    void (*write)(List const& list, std::vector<ResultRow> const& services);
};

constexpr Format kFormats[] = {
    {"vdr", true, writeVdr}, {"enigma2", false, writeEnigma2}, {"csv", false, writeCsv}};

Format const& formatOf(std::string const& name) {
    for (Format const& format : kFormats)
        if (name == format.name)
            return format;
    throw Failure("'" + name + "' is none of vdr, enigma2 and csv", kUsage);
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
                "vdr (one group a list), enigma2 (a bouquet) or csv (a table)")
        .footer(
            "\"import --favourites\" brings vdr lists back as they were, \"edit LIST --from\" a\n"
            "table. In vdr lists hidden entries, and those that are no DVB service, stand in\n"
            "comments that begin with \"#channellist\". What the format, or the database, cannot\n"
            "carry: pids and access systems (TV services get the video pid 8191, none, scrambled\n"
            "ones the access id FFFF), and fractions of a satellite's MHz. A bouquet carries no\n"
            "numbers and no hidden entries.\n\n"
            "Examples:\n"
            "  channellist export FAV1 FAV2 FAV3 FAV4 > favourites.conf\n"
            "  channellist export --format enigma2 FAV1 > userbouquet.fav1.tv\n"
            "  channellist export --format csv all > all.csv")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
