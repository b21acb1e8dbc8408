// channellist attributes LIST
#include <channellist-access/db_access.h>

#include <cstdio>
#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/session.h"
#include "failure.h"
#include "output/print_rows.h"
#include "output/text_table.h"
#include "services/service_reader.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

struct Options {
    std::string list;
    bool json = false;
};

constexpr unsigned int kOrderByMediaType = 0x200;

std::string hexadecimal(unsigned int word) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", word);
    return text;
}

std::vector<std::string> setBits(unsigned int word) {
    std::vector<std::string> bits;
    for (unsigned int bit = 0; bit < 32; ++bit)
        if ((word >> bit & 1U) != 0)
            bits.push_back(std::to_string(bit));
    return bits;
}

// "" for a list that viewers cannot browse.
std::string capabilityOf(List const& list) {
    for (ResultRow const& folder : readFolders().rows)
        if (folder[FOLDER_FIELD_UUID] == list.uuid)
            return folder[FOLDER_FIELD_CAPABILITY];
    return "";
}

int run(std::string const& database, Options const& options) {
    Session const session(database);
    List const list = findList(options.list);
    unsigned int attributes = 0;
    if (dbaccess::getFavriteAttributes(list.uuid, &attributes) != 0) {
        throw Failure("the attributes of " + displayName(list) +
                      " cannot be read; \"channellist check\" tells why");
    }
    char const* const order =
        (attributes & kOrderByMediaType) != 0 ? "media type, number" : "number";
    std::string const capability = capabilityOf(list);
    if (options.json) {
        printJson({{"name", displayName(list)},
                   {"uuid", list.uuid},
                   {"attributes", attributes},
                   {"folderWord", attr(list.creator, attributes)},
                   {"capability", numberOrText(capability)},
                   {"order", order}});
        return kSuccess;
    }
    TextTable table({{"List", Align::Left, kIsCut},
                     {"Attributes", Align::Right},
                     {"Hex", Align::Right},
                     {"Bits", Align::Left, kWraps},
                     {"Folder word", Align::Right},
                     {"Capability", Align::Right},
                     {"Order by"}});
    table.add({displayName(list), std::to_string(attributes), hexadecimal(attributes),
               joined(setBits(attributes), " "), hexadecimal(attr(list.creator, attributes)),
               capability, order});
    table.print(std::cout);
    return kSuccess;
}

}  // namespace

void addAttributesCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("attributes", "The attribute word of a list, and what follows from it")
        .argument("LIST", options->list, kListHelp)
        .json(options->json)
        .footer(
            "The folder word holds the attributes in its upper half and the kind of the list, by "
            "its\n"
            "creator, in its lower half.\n"
            "Examples:\n"
            "  channellist attributes FAV1\n"
            "  channellist attributes 'Astra 19.2°E' --json")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
