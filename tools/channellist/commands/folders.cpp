// channellist folders
#include <channellist-access/db_access.h>
#include <channellist-access/field_ids.h>

#include <cstdlib>
#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "output/text_table.h"
#include "services/service_reader.h"
#include "text/json_text.h"

namespace tool {
namespace {

// By the flags that the library derives from a list's creator.
std::string kindOf(ResultRow const& folder) {
    switch (std::strtoul(folder[FOLDER_FIELD_FLAGS].c_str(), nullptr, 10)) {
        case 0x05:
            return "user TV";
        case 0x09:
            return "user radio";
        case 0x10:
            return "all services";
        case 0x20:
            return "inputs";
        case 0x40:
            return "delivery";
        case 0x42:
            return "digital";
        case 0x140:
            return "analogue";
        default:
            return "other";
    }
}

// The number of a translated name means nothing to a reader, and nothing to the other commands.
std::string nameOf(ResultRow const& folder) {
    std::string const kind = kindOf(folder);
    return kind == "all services" ? "all" : kind == "inputs" ? kind : folder[FOLDER_FIELD_CAPTION];
}

// No viewer browses it, but every command that takes a list takes it.
void addAllServicesList(std::vector<ResultRow>& folders) {
    for (List const& list : allLists()) {
        if (!isAllList(list))
            continue;
        Query query(db, "SELECT NetworkId, UpdateTag FROM FavoriteList WHERE Pid = ?");
        query.bind(static_cast<std::int64_t>(list.pid)).next();
        ResultRow folder(FOLDER_FIELD_FAV_NAME + 1);
        folder[FOLDER_FIELD_UUID] = list.uuid;
        folder[FOLDER_FIELD_FLAGS] = std::to_string(attr(list.creator, 0));
        folder[FOLDER_FIELD_NETWORK_ID] = query.text(0);
        folder[FOLDER_FIELD_UPDATE_TAG] = query.text(1);
        folders.push_back(std::move(folder));
    }
}

std::vector<Column> tableColumns() {
    return {{"Name", Align::Left, kIsCut},
            {"FAV", Align::Left, 5},
            {"Kind", Align::Left, 4},
            {"Network", Align::Right, 2},
            {"Tag", Align::Right, 3},
            {"Capability", Align::Right, 1},
            {"UUID"}};
}

void printTable(std::vector<ResultRow> const& folders) {
    TextTable table(tableColumns());
    for (ResultRow const& folder : folders) {
        table.add({nameOf(folder), folder[FOLDER_FIELD_FAV_NAME], kindOf(folder),
                   folder[FOLDER_FIELD_NETWORK_ID], folder[FOLDER_FIELD_UPDATE_TAG],
                   folder[FOLDER_FIELD_CAPABILITY], folder[FOLDER_FIELD_UUID]});
    }
    table.print(std::cout);
}

void printObjects(std::vector<ResultRow> const& folders) {
    Json list = Json::array();
    for (ResultRow const& folder : folders) {
        list.push_back({{"name", nameOf(folder)},
                        {"uuid", folder[FOLDER_FIELD_UUID]},
                        {"fav", folder[FOLDER_FIELD_FAV_NAME]},
                        {"kind", kindOf(folder)},
                        {"flags", numberOrText(folder[FOLDER_FIELD_FLAGS])},
                        {"capability", numberOrText(folder[FOLDER_FIELD_CAPABILITY])},
                        {"networkId", numberOrText(folder[FOLDER_FIELD_NETWORK_ID])},
                        {"updateTag", numberOrText(folder[FOLDER_FIELD_UPDATE_TAG])}});
    }
    printJson(list);
}

int run(std::string const& database, Format const& format) {
    Session const session(database);
    Rows folders = format.raw ? readRawFolders() : readFolders();
    if (!format.raw)
        addAllServicesList(folders.rows);
    if (format.raw)
        (format.json ? printRawJson : printRaw)(folders.rows);
    else
        (format.json ? printObjects : printTable)(folders.rows);
    if (!folders.complete)
        throw Failure("not all lists could be read; \"channellist check\" tells why");
    return kSuccess;
}

}  // namespace

void addFoldersCommand(CommandLine& line) {
    auto format = std::make_shared<Format>();
    line.add("folders",
             "The lists that a viewer can browse, in the set's order, and that of all services")
        .json(format->json)
        .flag("--raw", format->raw, kRawHelp)
        .footer(narrowHelp(tableColumns()) +
                "Examples:\n"
                "  channellist folders\n"
                "  channellist folders --json | jq '.[].name'\n"
                "  channellist folders --raw --db copy-of-servicelist.db")
        .action([format](std::string const& database) { return run(database, *format); });
}

}  // namespace tool
