// channellist attributes LIST
#include <channellist-access/db_access.h>

#include <cstdio>
#include <iostream>

#include "commands/command.h"
#include "database/list_naming.h"
#include "output/json_text.h"
#include "output/text_table.h"
#include "services/service_reader.h"
#include "services/service_words.h"

namespace tool {
namespace {

constexpr unsigned int kOrderByMediaType = 0x200;

std::string hexadecimal(unsigned int word) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", word);
    return text;
}

std::vector<std::string> setBits(unsigned int word) {
    std::vector<std::string> bits;
    for (unsigned int bit = 0; bit < 32; ++bit) {
        if ((word >> bit & 1U) != 0) {
            bits.push_back(std::to_string(bit));
        }
    }
    return bits;
}

// "" for a list that viewers cannot browse.
std::string capabilityOf(const List& list) {
    for (const ResultRow& folder : readFolders().rows) {
        if (folder[FOLDER_FIELD_UUID] == list.uuid) {
            return folder[FOLDER_FIELD_CAPABILITY];
        }
    }
    return "";
}

int run(const std::string& database, const std::string& word, bool json) {
    const Session session(database);
    const List list = findList(word);
    unsigned int attributes = 0;
    if (dbaccess::getFavriteAttributes(list.uuid, &attributes) != 0) {
        throw Failure("the attributes of " + displayName(list) +
                      " cannot be read; \"channellist check\" tells why");
    }
    const char* const order =
        (attributes & kOrderByMediaType) != 0 ? "media type, number" : "number";
    const std::string capability = capabilityOf(list);
    if (json) {
        printJson({{"name", displayName(list)},
                   {"uuid", list.uuid},
                   {"attributes", attributes},
                   {"folderWord", attr(list.creator, attributes)},
                   {"capability", numberOrText(capability)},
                   {"order", order}});
        return kSuccess;
    }
    TextTable table({{"List"},
                     {"Attributes", Align::Right},
                     {"Hex", Align::Right},
                     {"Bits"},
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

void addAttributesCommand(CLI::App& app, CommandLine& line) {
    CLI::App* command =
        app.add_subcommand("attributes", "The attribute word of a list, and what follows from it");
    auto list = std::make_shared<std::string>();
    auto json = std::make_shared<bool>(false);
    command->add_option("LIST", *list, "uuid, or a name that only one list has")->required();
    addJsonOption(*command, *json);
    command->footer(
        "The folder word holds the attributes in its upper half and the kind of the list, by its\n"
        "creator, in its lower half.\n"
        "Examples:\n"
        "  channellist attributes FAV1\n"
        "  channellist attributes 'Astra 19.2°E' --json");
    command->callback([&line, list, json] {
        line.run = [&line, list, json] { return run(line.database, *list, *json); };
    });
}

}  // namespace tool
