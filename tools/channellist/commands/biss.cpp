// channellist biss SERVICE
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "edit/operations.h"
#include "failure.h"
#include "output/json_text.h"
#include "output/text_table.h"

namespace tool {
namespace {

struct Options {
    std::string service;
    bool json = false;
};

std::string uuidOf(const std::string& service) {
    Query query(db, "SELECT count(*) FROM Service WHERE Uuid = ?");
    query.bind(service).next();
    if (query.number(0) != 0) {
        return service;
    }
    const std::vector<Entry> all = readEntries(findList("all").uuid).entries;
    return all[findEntry(all, service, "the list of all services")].uuid;
}

int run(const std::string& database, const Options& options) {
    const Session session(database);
    const std::string uuid = uuidOf(options.service);
    const std::string key = dbaccess::getBissKeyFromService(uuid);
    const bool found = key != "NULL";
    if (options.json) {
        printJson({{"uuid", uuid}, {"bissKey", found ? Json(key) : Json(nullptr)}});
    } else if (found) {
        std::cout << displayText(key) << "\n";
    }
    if (!found) {
        throw Failure("no BISS key is stored with service " + displayText(uuid));
    }
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
        .action([options](const std::string& database) { return run(database, *options); });
}

}  // namespace tool
