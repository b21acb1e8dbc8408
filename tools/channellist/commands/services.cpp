// channellist services LIST
#include "commands/commands.h"
#include "commands/filter_options.h"
#include "commands/service_fields.h"
#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "services/service_filter.h"
#include "services/service_reader.h"
#include "services/service_words.h"

namespace tool {
namespace {

struct Options {
    std::string list;
    Format format;
    std::string columns;
    ServiceFilter filter;
};

Style styleOf(ResultRow const& service) { return isDeleted(service) ? Style::Dim : Style::Plain; }

int run(std::string const& database, Options const& options) {
    if (options.format.raw && (options.filter.isSet() || !options.columns.empty()))
        throw Failure("--raw prints the rows as the library gives them: all, and in its order",
                      kUsage);
    Session const session(database);
    FrozenDatabase const frozen;
    List const list = findList(options.list);
    Rows services = options.format.raw ? readRawServices(list.uuid) : readServices(list.uuid);
    if (!options.format.raw)
        services.rows = filtered(std::move(services.rows), options.filter);
    if (options.format.raw)
        (options.format.json ? printRawJson : printRaw)(services.rows);
    else
        printFields(serviceFields(), services.rows, options.columns, options.format.json, styleOf);
    if (!services.complete)
        throw Failure("not all services could be read; \"channellist check\" tells why");
    return kSuccess;
}

}  // namespace

void addServicesCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    Command command = line.add("services", "The services of a list, in the set's order");
    command.argument("LIST", options->list, kListHelp)
        .json(options->format.json)
        .flag("--raw", options->format.raw, kRawHelp)
        .option("--columns", options->columns, "what to tell, in this order");
    addFilterOptions(command, options->filter);
    command
        .footer(
            narrowHelp(usualColumns(serviceFields())) + columnsHelp(keysOf(serviceFields())) +
            "Examples:\n"
            "  channellist services FAV1\n"
            "  channellist services all --tv --hd --free --sort name\n"
            "  channellist services 'DVB-S' --json | jq '.[] | select(.state[] == \"hidden\")'\n"
            "  channellist services all --columns number,name,provider,frequency\n"
            "  channellist services all --raw")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
