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

std::string tuningUri(Query& uris, const std::string& servicePid) {
    uris.reset();
    uris.bind(std::strtoll(servicePid.c_str(), nullptr, 10));
    return uris.next() ? uris.text(0) : std::string();
}

// The numbers count on through all lists; a gap inside a list is written as ":@N".
void writeList(const List& list, int& nextNumber) {
    const Rows services = readServices(list.uuid);
    Query uris(db, "SELECT Uri FROM UriView WHERE Pid = ?");
    if (!isAllList(list)) {  // of which every channel is, whatever its group
        std::cout << formatGroup(displayName(list)) << "\n";
    }
    int skipped = 0;
    for (const ResultRow& service : services.rows) {
        const bool encrypted = (attributesOf(service) & kScrambled) != 0;
        const auto channel =
            channelOf({service[SERVICE_FIELD_CAPTION], tuningUri(uris, service[SERVICE_FIELD_PID]),
                       kindOf(service) == "radio", encrypted});
        if (!channel || isDeleted(service)) {
            ++skipped;
            continue;
        }
        const int number = std::atoi(service[SERVICE_FIELD_CHANNEL_NUMBER].c_str());
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
    if (!services.complete) {
        throw Failure("not all services could be read; \"channellist check\" tells why");
    }
}

int run(const std::string& database, const std::vector<std::string>& words) {
    const Session session(database);
    int nextNumber = 1;
    for (const std::string& word : words) {
        writeList(findList(word), nextNumber);
    }
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
        .action([lists](const std::string& database) { return run(database, *lists); });
}

}  // namespace tool
