// channellist list LIST
#include <iostream>

#include "commands/commands.h"
#include "commands/filter_options.h"
#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/session.h"
#include "failure.h"
#include "lists/list_text.h"
#include "services/service_filter.h"
#include "services/service_reader.h"

namespace tool {
namespace {

struct Options {
    std::string list;
    ServiceFilter filter;
};

int run(std::string const& database, Options const& options) {
    Session const session(database);
    FrozenDatabase const frozen;
    List const list = findList(options.list);
    Rows const content = readServices(list.uuid);
    std::vector<Entry> entries;
    for (ResultRow const& service : filtered(content.rows, options.filter))
        entries.push_back(entryOf(service));
    std::cout << formatList(displayName(list), entries);
    if (!content.complete)
        throw Failure("not all services could be read; \"channellist check\" tells why");
    return kSuccess;
}

}  // namespace

void addListCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    Command command =
        line.add("list", "Prints a list as a text to edit, which \"edit LIST --from\" takes back");
    command.argument("LIST", options->list, kListHelp);
    addFilterOptions(command, options->filter);
    command
        .footer(
            "Every entry is a line: number, shown or hidden, name, DVB triplet and key. Comments\n"
            "at the top explain what can be changed.\n"
            "Examples:\n"
            "  channellist list FAV1 > mine.txt\n"
            "  channellist list all --tv --hd --free | channellist edit FAV2 --from -\n"
            "  channellist list FAV1 --db old.db | channellist edit FAV1 --from - --db new.db")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
