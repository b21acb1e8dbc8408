// channellist list LIST
#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/session.h"
#include "failure.h"
#include "lists/list_text.h"

namespace tool {
namespace {

int run(std::string const& database, std::string const& word) {
    Session const session(database);
    List const list = findList(word);
    Entries const content = readEntries(list.uuid);
    std::cout << formatList(displayName(list), content.entries);
    if (!content.complete)
        throw Failure("not all services could be read; \"channellist check\" tells why");
    return kSuccess;
}

}  // namespace

void addListCommand(CommandLine& line) {
    auto list = std::make_shared<std::string>();
    line.add("list", "Prints a list as a text to edit, which \"edit LIST --from\" takes back")
        .argument("LIST", *list, kListHelp)
        .footer(
            "Every entry is a line: number, shown or hidden, name, DVB triplet and key. Comments\n"
            "at the top explain what can be changed.\n"
            "Examples:\n"
            "  channellist list FAV1 > mine.txt\n"
            "  channellist list FAV1 --db old.db | channellist edit FAV1 --from - --db new.db")
        .action([list](std::string const& database) { return run(database, *list); });
}

}  // namespace tool
