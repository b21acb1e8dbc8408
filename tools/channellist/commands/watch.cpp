// channellist watch [LIST...]
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <iostream>

#include "commands/commands.h"
#include "failure.h"
#include "lists/difference.h"
#include "output/terminal_listener.h"
#include "text/display_text.h"
#include "text/json_text.h"
#include "watch/file_events.h"
#include "watch/list_watch.h"

namespace tool {
namespace {

// A commit reaches the file a moment before it can be read.
constexpr int kSoon = 50;     // milliseconds
constexpr int kLater = 1000;  // on file systems that keep their events to themselves

// Nothing needs an end of its own: the database is read alone, and each line is written at once.
void endAtSignals() {
    struct sigaction action = {};
    action.sa_handler = [](int) { _exit(kSuccess); };
    for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        sigaction(signal, &action, nullptr);
}

std::string now(char const* format) {
    std::time_t const seconds = std::time(nullptr);
    std::tm local = {};
    localtime_r(&seconds, &local);
    char text[40] = "";
    std::strftime(text, sizeof text, format, &local);
    return text;
}

std::string lineOf(Change const& change) {
    bool const isMoved =
        !change.before.empty() && !change.after.empty() && change.before != change.after;
    std::vector<std::string> what = change.what;
    if (isMoved && !what.empty())
        what[0] += " from " + change.before;
    return now("%H:%M:%S ") + displayText(change.listName) + ": " +
           (change.after.empty() ? change.before : change.after) + " " + displayText(change.name) +
           " " + joined(what);
}

void print(std::vector<Change> const& changes, bool json) {
    if (!json) {
        for (Change const& change : changes)
            std::cout << lineOf(change) + "\n" << std::flush;
        return;
    }
    for (Json const& change : differencesJson(changes)) {
        Json event = {{"time", now("%FT%T%z")}};
        event.update(change);
        std::cout << dumpJson(event, -1) + "\n" << std::flush;
    }
}

int run(std::string const& database, std::vector<std::string> const& words, bool json) {
    FileEvents events(database);
    ListWatch watch(database, words);
    endAtSignals();
    std::cerr << "channellist: watching " << displayText(joined(watch.listNames())) << " of "
              << displayText(database) << " (Ctrl-C to stop)\n";
    auto event = FileEvents::Event::Touched;
    while (event != FileEvents::Event::NoReader) {
        print(watch.look(), json);
        if (!std::cout)  // a full disk, and what is lost there is told nowhere else
            return kFailure;
        event = events.wait(event == FileEvents::Event::Touched ? kSoon : kLater, STDOUT_FILENO);
    }
    return kSuccess;
}

}  // namespace

void addWatchCommand(CommandLine& line) {
    auto words = std::make_shared<std::vector<std::string>>();
    auto json = std::make_shared<bool>();
    line.add("watch", "Prints what changes in lists, as it happens")
        .arguments("LIST", *words, 0, kAnyNumber,
                   std::string(kListHelp) + "; all lists without one")
        .json(*json)
        .footer(
            "Every entry that came, went, moved, was hidden or restored is a line, with --json an\n"
            "object. What others write between two looks is told together. A database that is\n"
            "locked, replaced or away for a while is waited for. It ends with Ctrl-C, or when\n"
            "nobody reads its output any more.\n"
            "Examples:\n"
            "  channellist watch\n"
            "  channellist watch FAV1 FAV2 --json | jq --unbuffered -r .name")
        .action(
            [words, json](std::string const& database) { return run(database, *words, *json); });
}

}  // namespace tool
