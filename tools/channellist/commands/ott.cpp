// channellist ott
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "output/text_table.h"
#include "services/ott_numbers.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

std::string texts(std::vector<unsigned int> const& numbers) {
    std::vector<std::string> words;
    words.reserve(numbers.size());
    for (unsigned int const number : numbers)
        words.push_back(std::to_string(number));
    return joined(words, " ");
}

int run(bool json) {
    OttSession const session;
    if (session.path().empty())
        throw Failure("HOME is not set, and the OTT database lies there");
    if (!session.exists())
        throw Failure("there is no OTT database " + session.path());
    TextTable table({{"List"}, {"Positions of OTT channels", Align::Left, kWraps}});
    Json object;
    for (int index = 1; index <= 4; ++index) {
        std::string const name = "FAV" + std::to_string(index);
        std::vector<unsigned int> const numbers = ottNumbers(index);
        object[name] = numbers;
        table.add({name, texts(numbers)});
    }
    if (json)
        printJson(object);
    else
        table.print(std::cout);
    return kSuccess;
}

}  // namespace

void addOttCommand(CommandLine& line) {
    auto json = std::make_shared<bool>();
    line.add("ott", "The positions that OTT channels hold in FAV1 to FAV4")
        .json(*json)
        .footer(
            "They stand in a database of their own, zentova_DB_V1.3.db in the home directory.\n"
            "Examples:\n"
            "  channellist ott\n"
            "  HOME=/home/tv channellist ott --json")
        .action([json](std::string const&) { return run(*json); });
}

}  // namespace tool
