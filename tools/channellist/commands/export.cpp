// channellist export LIST...
#include <channel-database/export.h>
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
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

// The numbers count on through all lists; a gap inside a list is written as ":@N".
void writeList(List const& list, int& nextNumber) {
    Rows const services = readServices(list.uuid);
    Query uris(db, "SELECT Uri FROM UriView WHERE Pid = ?");
    if (!isAllList(list))  // of which every channel is, whatever its group
        std::cout << formatGroup(displayName(list)) << "\n";
    int skipped = 0;
    for (ResultRow const& service : services.rows) {
        bool const encrypted = (attributesOf(service) & kScrambled) != 0;
        auto const channel =
            channelOf({service[SERVICE_FIELD_CAPTION], tuningUri(uris, service[SERVICE_FIELD_PID]),
                       kindOf(service) == "radio", encrypted});
        if (!channel || isDeleted(service)) {
            ++skipped;
            continue;
        }
        int const number = std::atoi(service[SERVICE_FIELD_CHANNEL_NUMBER].c_str());
        if (number > nextNumber) {
            std::cout << ":@" << number << "\n";
            nextNumber = number;
        }
        ++nextNumber;
        std::cout << formatChannel(*channel) << "\n";
    }
    if (skipped != 0) {
        std::cerr << "channellist: " << displayName(list) << ": left out " << skipped
                  << " services that are deleted or no DVB service\n";
    }
    if (!services.complete)
        throw Failure("not all services could be read; \"channellist check\" tells why");
}

int run(std::string const& database, std::vector<std::string> const& words) {
    Session const session(database);
    int nextNumber = 1;
    for (std::string const& word : words)
        writeList(findList(word), nextNumber);
    return kSuccess;
}

}  // namespace

void addExportCommand(CommandLine& line) {
    auto lists = std::make_shared<std::vector<std::string>>();
    line.add("export", "Prints lists as a VDR channel list, one group a list")
        .arguments("LIST", *lists, 1, kAnyNumber, "uuids, or names that only one list has")
        .footer(
            "The database keeps no pids and no access systems: TV services get the video pid 8191\n"
            "(none), scrambled ones the access id FFFF.\n"
            "Examples:\n"
            "  channellist export FAV1 FAV2 FAV3 FAV4 > favourites.conf\n"
            "  channellist export all > channels.conf")
        .action([lists](std::string const& database) { return run(database, *lists); });
}

}  // namespace tool
