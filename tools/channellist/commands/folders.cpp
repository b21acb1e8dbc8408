// channellist folders
#include <channellist-access/db_access.h>
#include <channellist-access/field_ids.h>

#include <cstdlib>
#include <map>

#include "commands/commands.h"
#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "output/fields.h"
#include "services/item_counts.h"
#include "services/service_reader.h"

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

struct Folder {
    ResultRow row;
    ItemCount count;
};

std::vector<Folder> withCounts(std::vector<ResultRow> rows) {
    std::map<unsigned int, ItemCount> const counts = itemCounts();
    std::map<std::string, ItemCount> byUuid;
    for (List const& list : allLists()) {
        auto const count = counts.find(list.pid);
        byUuid.emplace(list.uuid, count == counts.end() ? ItemCount() : count->second);
    }
    std::vector<Folder> folders;
    folders.reserve(rows.size());
    for (ResultRow& row : rows) {
        ItemCount const count = byUuid[row[FOLDER_FIELD_UUID]];
        folders.push_back({std::move(row), count});
    }
    return folders;
}

Field<Folder> stored(char const* key, Column column, FolderField field, bool isUsual = true) {
    return {key, std::move(column),
            [field](Folder const& folder) { return numberOrText(folder.row[field]); }, isUsual};
}

Field<Folder> text(char const* key, Column column, FolderField field) {
    return {key, std::move(column), [field](Folder const& folder) { return folder.row[field]; }};
}

std::vector<Field<Folder>> folderFields() {
    return {
        {"name",
         {"Name", Align::Left, kIsCut},
         [](Folder const& folder) { return nameOf(folder.row); }},
        text("fav", {"FAV", Align::Left, 6}, FOLDER_FIELD_FAV_NAME),
        {"kind", {"Kind", Align::Left, 4}, [](Folder const& folder) { return kindOf(folder.row); }},
        {"services",
         {"Services", Align::Right},
         [](Folder const& folder) { return folder.count.entries; }},
        {"hidden",
         {"Hidden", Align::Right, 5},
         [](Folder const& folder) { return folder.count.hidden; }},
        stored("networkId", {"Network", Align::Right, 2}, FOLDER_FIELD_NETWORK_ID),
        stored("updateTag", {"Tag", Align::Right, 3}, FOLDER_FIELD_UPDATE_TAG),
        stored("capability", {"Capability", Align::Right, 1}, FOLDER_FIELD_CAPABILITY),
        text("uuid", {"UUID"}, FOLDER_FIELD_UUID),
        stored("flags", {"Flags", Align::Right}, FOLDER_FIELD_FLAGS, false),
    };
}

Style plain(Folder const&) { return Style::Plain; }

struct Options {
    Format format;
    std::string columns;
};

int run(std::string const& database, Options const& options) {
    Format const& format = options.format;
    if (format.raw && !options.columns.empty())
        throw Failure("--raw prints the rows as the library gives them", kUsage);
    Session const session(database);
    FrozenDatabase const frozen;
    Rows folders = format.raw ? readRawFolders() : readFolders();
    if (!format.raw)
        addAllServicesList(folders.rows);
    if (format.raw)
        (format.json ? printRawJson : printRaw)(folders.rows);
    else
        printFields(folderFields(), withCounts(std::move(folders.rows)), options.columns,
                    format.json, plain);
    if (!folders.complete)
        throw Failure("not all lists could be read; \"channellist check\" tells why");
    return kSuccess;
}

}  // namespace

void addFoldersCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("folders",
             "The lists that a viewer can browse, in the set's order, and that of all services")
        .json(options->format.json)
        .flag("--raw", options->format.raw, kRawHelp)
        .option("--columns", options->columns, "what to tell, in this order")
        .footer("Services counts all entries, Hidden those of them that the list hides.\n\n" +
                narrowHelp(usualColumns(folderFields())) + columnsHelp(keysOf(folderFields())) +
                "Examples:\n"
                "  channellist folders\n"
                "  channellist folders --json | jq '.[].name'\n"
                "  channellist folders --raw --db copy-of-servicelist.db")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
