// channellist find WORD...
#include <channellist-access/field_ids.h>

#include <algorithm>
#include <iostream>

#include "commands/commands.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "output/text_table.h"
#include "services/database_content.h"
#include "services/service_words.h"
#include "text/display_text.h"
#include "text/folded_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

// A part of the name, or what names the service alone.
bool isMeant(ResultRow const& service, std::string const& word) {
    return "id:" + service[SERVICE_FIELD_PID] == word || tripletOf(service) == word ||
           service[SERVICE_FIELD_UUID] == word ||
           folded(service[SERVICE_FIELD_CAPTION]).find(folded(word)) != std::string::npos;
}

std::vector<ServicePlaces> servicesWith(std::vector<std::string> const& words,
                                        std::vector<ListContentRows> const& lists) {
    std::vector<ServicePlaces> found;
    for (auto const& service : placesOfServices(lists)) {
        ServicePlaces const& places = service.second;
        bool const isFound = std::all_of(words.begin(), words.end(), [&](std::string const& word) {
            return isMeant(places.service, word);
        });
        if (isFound)
            found.push_back(places);
    }
    return found;
}

std::vector<Column> tableColumns() {
    return {{"Name", Align::Left, kIsCut}, {"Kind", Align::Left, 2},
            {"Delivery", Align::Left, 1},  {"Triplet", Align::Left, 3},
            {"Id", Align::Right, 4},       {"Lists", Align::Left, kWraps}};
}

void print(std::vector<ServicePlaces> const& found) {
    TextTable table(tableColumns());
    for (ServicePlaces const& each : found) {
        std::vector<std::string> places;
        for (ServicePlace const& place : each.places)
            places.push_back(place.listName + " " + place.number +
                             (place.isDeleted ? " (hidden)" : ""));
        table.add({each.service[SERVICE_FIELD_CAPTION], kindOf(each.service),
                   deliveryOf(each.service), tripletOf(each.service),
                   each.service[SERVICE_FIELD_PID], joined(places)});
    }
    table.print(std::cout);
}

void printObjects(std::vector<ServicePlaces> const& found) {
    Json list = Json::array();
    for (ServicePlaces const& each : found) {
        Json places = Json::array();
        for (ServicePlace const& place : each.places) {
            places.push_back({{"list", place.listName},
                              {"uuid", place.listUuid},
                              {"number", numberOrText(place.number)},
                              {"hidden", place.isDeleted}});
        }
        list.push_back({{"name", each.service[SERVICE_FIELD_CAPTION]},
                        {"kind", kindOf(each.service)},
                        {"delivery", deliveryOf(each.service)},
                        {"triplet", tripletOf(each.service)},
                        {"id", numberOrText(each.service[SERVICE_FIELD_PID])},
                        {"uuid", each.service[SERVICE_FIELD_UUID]},
                        {"lists", std::move(places)}});
    }
    printJson(list);
}

int run(std::string const& database, std::vector<std::string> const& words, bool json) {
    if (std::count(words.begin(), words.end(), "") != 0)
        throw Failure("an empty word finds nothing", kUsage);
    Session const session(database);
    DatabaseContent const content = readAllLists();
    std::vector<ServicePlaces> const found = servicesWith(words, content.lists);
    if (json)
        printObjects(found);
    else if (!found.empty())
        print(found);
    if (!content.complete)
        throw Failure("not all services could be read; \"channellist check\" tells why");
    if (found.empty())
        throw Failure("no service has '" + joined(words, " ") +
                      "' in its name, id, triplet or uuid");
    return kSuccess;
}

}  // namespace

void addFindCommand(CommandLine& line) {
    auto words = std::make_shared<std::vector<std::string>>();
    auto json = std::make_shared<bool>();
    line.add("find", "Finds services, and the lists and numbers that they stand at")
        .arguments("WORD", *words, 1, kAnyNumber,
                   "a part of the name, whatever its case; id:N, a triplet or a uuid")
        .json(*json)
        .footer("Of several words each has to fit. " + narrowHelp(tableColumns()) +
                "Examples:\n"
                "  channellist find arte\n"
                "  channellist find zdf hd\n"
                "  channellist find 1-1019-10301")
        .action(
            [words, json](std::string const& database) { return run(database, *words, *json); });
}

}  // namespace tool
