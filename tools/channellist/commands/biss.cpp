// channellist biss SERVICE
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "lists/meant_entries.h"
#include "output/print_rows.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

struct Options {
    std::string service;
    bool json = false;
};

std::string uuidOf(std::string const& service) {
    Query query(db, "SELECT count(*) FROM Service WHERE Uuid = ?");
    query.bind(service).next();
    if (query.number(0) != 0)
        return service;
    std::vector<Entry> const all = readEntries(allServicesList().uuid).entries;
    return all[findEntry(all, service, "the list of all services")].uuid;
}

int run(std::string const& database, Options const& options) {
    Session const session(database);
    std::string const uuid = uuidOf(options.service);
    std::string const key = dbaccess::getBissKeyFromService(uuid);
    bool const found = key != "NULL";
    if (options.json)
        printJson({{"uuid", uuid}, {"bissKey", found ? Json(key) : Json(nullptr)}});
    else if (found)
        std::cout << displayText(key) << "\n";
    if (!found)
        throw Failure("no BISS key is stored with service " + displayText(uuid));
    return kSuccess;
}

}  // namespace

void addBissCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("biss", "The BISS key stored with a service")
        .argument("SERVICE", options->service,
                  "uuid, or the name, number or id:N of a service in the list of all services")
        .json(options->json)
        .footer(
            "Examples:\n"
            "  channellist biss S19.2E-1-1019-10302\n"
            "  channellist biss 'arte HD'")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
