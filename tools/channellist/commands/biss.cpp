// channellist biss SERVICE
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/command.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "edit/operations.h"
#include "output/json_text.h"
#include "output/text_table.h"

namespace tool {
namespace {

std::string uuidOf(const std::string& service) {
    Query query(db, "SELECT count(*) FROM Service WHERE Uuid = ?");
    query.bind(service).next();
    if (query.number(0) != 0) {
        return service;
    }
    const std::vector<Entry> all = readEntries(findList("all").uuid).entries;
    return all[findEntry(all, service, "the list of all services")].uuid;
}

int run(const std::string& database, const std::string& service, bool json) {
    const Session session(database);
    const std::string uuid = uuidOf(service);
    const std::string key = dbaccess::getBissKeyFromService(uuid);
    const bool found = key != "NULL";
    if (json) {
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

void addBissCommand(CLI::App& app, CommandLine& line) {
    CLI::App* command = app.add_subcommand("biss", "The BISS key stored with a service");
    auto service = std::make_shared<std::string>();
    auto json = std::make_shared<bool>(false);
    command
        ->add_option("SERVICE", *service,
                     "uuid, or the name, number or id:N of a service in the list of all services")
        ->required();
    addJsonOption(*command, *json);
    command->footer(
        "Examples:\n"
        "  channellist biss S19.2E-1-1019-10302\n"
        "  channellist biss 'arte HD'");
    command->callback([&line, service, json] {
        line.run = [&line, service, json] { return run(line.database, *service, *json); };
    });
}

}  // namespace tool
