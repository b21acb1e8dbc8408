// channellist find WORD...
#include <channellist-access/field_ids.h>

#include <algorithm>
#include <map>

#include "commands/commands.h"
#include "commands/filter_options.h"
#include "commands/service_fields.h"
#include "database/frozen_database.h"
#include "database/session.h"
#include "failure.h"
#include "services/database_content.h"
#include "services/service_filter.h"
#include "services/service_words.h"
#include "text/display_text.h"
#include "text/folded_text.h"

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

Json placesIn(ServicePlaces const& found) {
    Json places = Json::array();
    for (ServicePlace const& place : found.places) {
        places.push_back({{"list", place.listName},
                          {"uuid", place.listUuid},
                          {"number", numberOrText(place.number)},
                          {"hidden", place.isDeleted}});
    }
    return places;
}

std::string placesText(Json const& places) {
    std::vector<std::string> words;
    for (Json const& place : places)
        words.push_back(place["list"].get<std::string>() + " " + textOf(place["number"]) +
                        (place["hidden"].get<bool>() ? " (hidden)" : ""));
    return joined(words);
}

// What the lists say of it is in its places.
std::vector<Field<ServicePlaces>> foundFields() {
    std::map<std::string, int> const usual = {
        {"name", kIsCut}, {"kind", 2}, {"delivery", 1}, {"triplet", 3}, {"id", 4}};
    std::vector<Field<ServicePlaces>> fields, others;
    for (Field<ResultRow> const& field : serviceFields()) {
        std::string const key = field.key;
        if (key == "number" || key == "state" || key == "attributes")
            continue;
        auto const place = usual.find(key);
        Field<ServicePlaces> const own = {
            field.key, field.column,
            [value = field.value](ServicePlaces const& found) { return value(found.service); },
            place != usual.end(), field.text};
        (own.isUsual ? fields : others).push_back(own);
        if (own.isUsual)
            fields.back().column.leaves = place->second;
    }
    // The key that names one service stands behind what names it for people.
    auto const id = std::find_if(fields.begin(), fields.end(),
                                 [](auto const& field) { return field.key == std::string("id"); });
    std::rotate(id, id + 1, fields.end());
    fields.push_back({"lists", {"Lists", Align::Left, kWraps}, placesIn, true, placesText});
    fields.insert(fields.end(), others.begin(), others.end());
    return fields;
}

bool isHiddenSomewhere(ServicePlaces const& found) {
    return found.service[SERVICE_FIELD_VISIBLE] == "0" ||
           std::any_of(
               found.places.begin(), found.places.end(),
               [](ServicePlace const& place) { return place.isDeleted; });
}

// In the order of the filter.
std::vector<ServicePlaces> filtered(std::vector<ServicePlaces> const& found, ServiceFilter filter) {
    std::map<std::string, ServicePlaces const*> byId;
    std::vector<ResultRow> rows;
    for (ServicePlaces const& each : found) {
        if (filter.hidden && !isHiddenSomewhere(each))
            continue;
        byId.emplace(each.service[SERVICE_FIELD_PID], &each);
        rows.push_back(each.service);
    }
    filter.hidden = false;
    std::vector<ServicePlaces> kept;
    for (ResultRow const& row : channel_lists::filtered(std::move(rows), std::move(filter)))
        kept.push_back(*byId.at(row[SERVICE_FIELD_PID]));
    return kept;
}

Style plain(ServicePlaces const&) { return Style::Plain; }

struct Options {
    std::vector<std::string> words;
    ServiceFilter filter;
    std::string columns;
    bool json = false;
};

int run(std::string const& database, Options const& options) {
    std::vector<std::string> const& words = options.words;
    if (std::count(words.begin(), words.end(), "") != 0)
        throw Failure("an empty word finds nothing", kUsage);
    if (words.empty() && !options.filter.isSet())
        throw Failure("find needs a word, or a filter", kUsage);
    Session const session(database);
    FrozenDatabase const frozen;
    DatabaseContent const content = readAllLists();
    std::vector<ServicePlaces> const found =
        filtered(servicesWith(words, content.lists), options.filter);
    if (options.json || !found.empty())
        printFields(foundFields(), found, options.columns, options.json, plain);
    if (!content.complete)
        throw Failure("not all services could be read; \"channellist check\" tells why");
    if (found.empty())
        throw Failure(words.empty() ? "no service fits"
                                    : "no service has '" + joined(words, " ") +
                                          "' in its name, id, triplet or uuid");
    return kSuccess;
}

}  // namespace

void addFindCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    Command command =
        line.add("find", "Finds services, and the lists and numbers that they stand at");
    command
        .arguments("WORD", options->words, 0, kAnyNumber,
                   "a part of the name, whatever its case; id:N, a triplet or a uuid")
        .json(options->json)
        .option("--columns", options->columns, "what to tell, in this order");
    addFilterOptions(command, options->filter);
    command
        .footer("Of several words each has to fit. " + narrowHelp(usualColumns(foundFields())) +
                columnsHelp(keysOf(foundFields())) +
                "Examples:\n"
                "  channellist find arte\n"
                "  channellist find zdf --hd --delivery cable\n"
                "  channellist find 1-1019-10301")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
