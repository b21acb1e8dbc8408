// channellist services LIST
#include <channellist-access/field_ids.h>

#include <iostream>

#include "commands/commands.h"
#include "commands/filter_options.h"
#include "database/list_naming.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "output/text_table.h"
#include "services/service_filter.h"
#include "services/service_reader.h"
#include "services/service_words.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

struct Options {
    std::string list;
    Format format;
    ServiceFilter filter;
};

std::vector<Column> tableColumns() {
    return {{"No", Align::Right},
            {"LCN", Align::Right, 1},
            {"Name", Align::Left, kIsCut},
            {"Kind", Align::Left, 8},
            {"Delivery", Align::Left, 5},
            {"ONID", Align::Right, 2},
            {"TSID", Align::Right, 3},
            {"SID", Align::Right, 4},
            {"Id", Align::Right, 7},
            {"FAV", Align::Left, 6},
            {"State"}};
}

void printTable(std::vector<ResultRow> const& services) {
    TextTable table(tableColumns());
    for (ResultRow const& service : services) {
        table.add(
            {service[SERVICE_FIELD_CHANNEL_NUMBER], service[SERVICE_FIELD_LCN],
             service[SERVICE_FIELD_CAPTION], kindOf(service), deliveryOf(service),
             service[SERVICE_FIELD_ORIGINAL_NETWORK_ID], service[SERVICE_FIELD_TRANSPORT_STREAM_ID],
             service[SERVICE_FIELD_SERVICE_ID], service[SERVICE_FIELD_PID],
             joined(favouritesOf(service), " "), joined(statesOf(service))},
            isDeleted(service) ? Style::Dim : Style::Plain);
    }
    table.print(std::cout);
}

// The keys that are a column of the row as it is.
constexpr struct {
    char const* key;
    ServiceField field;
} kNumberKeys[] = {
    {"onid", SERVICE_FIELD_ORIGINAL_NETWORK_ID},
    {"tsid", SERVICE_FIELD_TRANSPORT_STREAM_ID},
    {"sid", SERVICE_FIELD_SERVICE_ID},
    {"lcn", SERVICE_FIELD_LCN},
    {"networkId", SERVICE_FIELD_NETWORK_ID},
    {"nitId", SERVICE_FIELD_NIT_ID},
    {"satellite", SERVICE_FIELD_SATELLITE},
    {"frequency", SERVICE_FIELD_FREQUENCY},
    {"symbolRate", SERVICE_FIELD_SYMBOL_RATE},
    {"polarization", SERVICE_FIELD_POLARIZATION},
    {"ciSlot", SERVICE_FIELD_CI_SLOT},
    {"previewPage", SERVICE_FIELD_PREVIEW_PAGE},
    {"subtitlePage", SERVICE_FIELD_SUBTITLE_PAGE},
    {"encoding", SERVICE_FIELD_ENCODING},
    {"attributes", SERVICE_FIELD_ATTRIBUTES},
};

Json objectOf(ResultRow const& service) {
    Json object = {{"number", numberOrText(service[SERVICE_FIELD_CHANNEL_NUMBER])},
                   {"name", service[SERVICE_FIELD_CAPTION]},
                   {"id", numberOrText(service[SERVICE_FIELD_PID])},
                   {"uuid", service[SERVICE_FIELD_UUID]},
                   {"kind", kindOf(service)},
                   {"delivery", deliveryOf(service)},
                   {"state", statesOf(service)},
                   {"favourites", favouritesOf(service)},
                   {"tunerUuid", service[SERVICE_FIELD_TUNER_UUID]}};
    for (auto const& each : kNumberKeys)
        object[each.key] = numberOrText(service[each.field]);
    return object;
}

void printObjects(std::vector<ResultRow> const& services) {
    Json list = Json::array();
    for (ResultRow const& service : services)
        list.push_back(objectOf(service));
    printJson(list);
}

int run(std::string const& database, Options const& options) {
    if (options.format.raw && options.filter.isSet())
        throw Failure("--raw prints the rows as the library gives them: all, and in its order",
                      kUsage);
    Session const session(database);
    List const list = findList(options.list);
    Rows services = options.format.raw ? readRawServices(list.uuid) : readServices(list.uuid);
    if (!options.format.raw)
        services.rows = filtered(std::move(services.rows), options.filter);
    if (options.format.raw)
        (options.format.json ? printRawJson : printRaw)(services.rows);
    else
        (options.format.json ? printObjects : printTable)(services.rows);
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
        .flag("--raw", options->format.raw, kRawHelp);
    addFilterOptions(command, options->filter);
    command
        .footer(
            narrowHelp(tableColumns()) +
            "Examples:\n"
            "  channellist services FAV1\n"
            "  channellist services all --tv --hd --free --sort name\n"
            "  channellist services 'DVB-S' --json | jq '.[] | select(.state[] == \"hidden\")'\n"
            "  channellist services all --raw")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
