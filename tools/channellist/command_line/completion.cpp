#include "command_line/completion.h"

#include <channellist-access/field_ids.h>

#include <algorithm>
#include <cstdlib>
#include <exception>

#include "database/list_naming.h"
#include "database/session.h"
#include "services/service_reader.h"
#include "tool.h"

namespace tool {
namespace {

using Words = std::vector<std::string>;

constexpr char kFiles[] = ":files";

// Values of options, by name.
struct Values {
    char const* option;
    Words words;
};

std::vector<Values> const& values() {
    static std::vector<Values> const all = {
        {"--db", {kFiles}},
        {"--from", {kFiles}},
        {"--like", {kFiles}},
        {"--trace", {"1", "3000", "4000", "5000", "all"}},
        {"--color", {"auto", "always", "never"}},
        {"--list", {"FAV1", "FAV2", "FAV3", "FAV4"}},
        {"--format", {"vdr", "enigma2", "lamedb", "csv", "m3u", "dvbv5", "html"}},
        {"--delivery", {"satellite", "cable", "terrestrial", "analogue", "IP"}},
        {"--sort", {"number", "name", "triplet"}},
        {"--fail-on", {"edits", "seen", "tuning", "slow", "odd"}},
    };
    return all;
}

// What the line says up to the word, and which database all of it names.
struct Line {
    std::string command;
    Words arguments;
    std::string option;  // that waits for its value
    std::string word;
    std::string database = kSetDatabase;
    bool optionsEnded = false;
};

bool takesValue(std::vector<CommandWords> const& commands, std::string const& command,
                std::string const& option) {
    for (CommandWords const& each : commands)
        if (each.name.empty() || each.name == command)
            for (CommandWords::Option const& known : each.options)
                if (known.name == option)
                    return known.takesValue;
    return false;
}

std::string path(std::string const& typed) {
    char const* const home = std::getenv("HOME");
    return typed.compare(0, 2, "~/") == 0 && home != nullptr ? home + typed.substr(1) : typed;
}

void read(Line& line, std::vector<CommandWords> const& commands, std::string const& word) {
    if (!line.option.empty())
        line.option.clear();
    else if (word == "--")
        line.optionsEnded = true;
    else if (!line.optionsEnded && word[0] == '-')
        line.option = takesValue(commands, line.command, word) ? word : "";
    else if (line.command.empty())
        line.command = word;
    else
        line.arguments.push_back(word);
}

Line lineOf(std::vector<CommandWords> const& commands, Words const& words) {
    Line line;
    auto const index = static_cast<std::size_t>(std::max(1, std::atoi(words[0].c_str())));
    for (std::size_t i = 1; i < std::min(index, words.size()); ++i)
        if (!words[i].empty())
            read(line, commands, words[i]);
    if (index < words.size())
        line.word = words[index];
    std::size_t const equals = line.word.find('=');
    if (line.option.empty() && !line.optionsEnded && line.word.compare(0, 2, "--") == 0 &&
        equals != std::string::npos) {
        line.option = line.word.substr(0, equals);
        line.word.erase(0, equals + 1);
    }
    for (std::size_t i = 1; i < words.size(); ++i)
        if (words[i].compare(0, 5, "--db=") == 0)
            line.database = path(words[i].substr(5));
        else if (words[i] == "--db" && i + 1 < words.size() && i + 1 != index)
            line.database = path(words[i + 1]);
    return line;
}

Words listWords() {
    Words words;
    for (List const& list : allLists())
        for (std::string const& word : {displayName(list), list.uuid})
            if (std::find(words.begin(), words.end(), word) == words.end())
                words.push_back(word);
    return words;
}

Words serviceWords(std::string const& list, std::size_t field) {
    Words words;
    for (ResultRow const& service : readServices(findList(list).uuid).rows)
        words.push_back(service[field]);
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return words;
}

// The operations of an edit, and the services behind them.
Words editWords(Words const& arguments) {
    static Words const verbs = {"add", "remove", "move", "hide", "restore", "swap", "sort", "copy"};
    std::string const& last = arguments.back();
    bool const isFirst = arguments.size() == 1;  // the list
    if (!isFirst && last == "copy")
        return listWords();
    if (!isFirst && (last == "sort" || last == "by"))
        return {"by", "name", "number", "provider"};
    if (!isFirst && std::find(verbs.begin(), verbs.end(), last) != verbs.end())
        return serviceWords(last == "add" ? "all" : arguments[0], SERVICE_FIELD_CAPTION);
    if (!isFirst && (last == "at" || last == "to"))
        return {};
    Words words = verbs;
    if (!isFirst)
        words.insert(words.end(), {"at", "to"});
    return words;
}

bool takesLists(Line const& line) {
    for (char const* command : {"services", "list", "attributes", "edit"})
        if (line.command == command)
            return line.arguments.empty();
    return line.command == "export" || line.command == "driver" || line.command == "watch";
}

Words argumentWords(Line const& line) {
    for (char const* command : {"import", "backup", "restore", "diff"})
        if (line.command == command)
            return {kFiles};
    bool const takesService = line.command == "biss" && line.arguments.empty();
    if (!takesLists(line) && !takesService && line.command != "edit")
        return {};
    Session const session(line.database);
    if (takesService)
        return serviceWords("all", SERVICE_FIELD_UUID);
    return takesLists(line) ? listWords() : editWords(line.arguments);
}

Words optionWords(std::vector<CommandWords> const& commands, std::string const& command) {
    Words words;
    for (CommandWords const& each : commands)
        if (each.name.empty() || each.name == command)
            for (CommandWords::Option const& option : each.options)
                if (std::find(words.begin(), words.end(), option.name) == words.end())
                    words.push_back(option.name);
    return words;
}

}  // namespace

Words completions(std::vector<CommandWords> const& commands, Words const& words) {
    if (words.empty())
        return {};
    Line const line = lineOf(commands, words);
    if (!line.option.empty()) {
        for (Values const& each : values())
            if (line.option == each.option)
                return each.words;
        return {};
    }
    if (!line.optionsEnded && !line.word.empty() && line.word[0] == '-')
        return optionWords(commands, line.command);
    if (!line.command.empty()) {
        try {
            return argumentWords(line);
        } catch (std::exception const&) {  // a line that is being typed needs no message
            return takesLists(line) ? Words{"FAV1", "FAV2", "FAV3", "FAV4", "all", "inputs"}
                                    : Words();
        }
    }
    Words names;
    for (CommandWords const& each : commands)
        if (!each.name.empty())
            names.push_back(each.name);
    return names;
}

}  // namespace tool
