// channellist export LIST...
#include <channel-database/export.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "edit/list_content.h"
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
void writeList(List const& list) {
    Rows const services = readServices(list.uuid);
    Query uris(db, "SELECT Uri FROM UriView WHERE Pid = ?");
    if (!isAllList(list))  // of which every channel is, whatever its group
        std::cout << formatGroup(displayText(displayName(list))) << "\n";
    std::int64_t nextNumber = 1;
    for (ResultRow const& service : services.rows)
        std::cout << lineOf(service, tuningUri(uris, service[SERVICE_FIELD_PID]), nextNumber)
                  << "\n";
    if (!services.complete)
        throw Failure("not all services could be read; \"channellist check\" tells why");
}

int run(std::string const& database, std::vector<std::string> const& words) {
    Session const session(database);
    std::vector<List> lists;
    for (std::string const& word : words)
        lists.push_back(findList(word));
    // Nothing but the next group ends one, so what stands in none comes first.
    std::stable_partition(lists.begin(), lists.end(), isAllList);
    for (List const& list : lists)
        writeList(list);
    return kSuccess;
}

}  // namespace

void addExportCommand(CommandLine& line) {
    auto lists = std::make_shared<std::vector<std::string>>();
    line.add("export", "Prints lists as a VDR channel list, one group a list")
        .arguments("LIST", *lists, 1, kAnyNumber, "uuids, or names that only one list has")
        .footer(
            "\"import --favourites\" brings lists back as they were. Hidden entries, and those "
            "that are\n"
            "no DVB service, stand in comments that begin with \"#channellist\". What the format, "
            "or\n"
            "the database, cannot carry: pids and access systems (TV services get the video pid\n"
            "8191, none, scrambled ones the access id FFFF), and fractions of a satellite's "
            "MHz.\n\n"
            "Examples:\n"
            "  channellist export FAV1 FAV2 FAV3 FAV4 > favourites.conf\n"
            "  channellist export all > channels.conf")
        .action([lists](std::string const& database) { return run(database, *lists); });
}

}  // namespace tool
