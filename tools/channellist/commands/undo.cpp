// channellist undo [NUMBER]
#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include "commands/commands.h"
#include "database/content_digest.h"
#include "database/query.h"
#include "database/session.h"
#include "failure.h"
#include "kept/undo_store.h"
#include "lists/difference.h"
#include "output/differences.h"
#include "output/print_rows.h"
#include "output/replacement.h"
#include "output/text_table.h"
#include "output/written.h"
#include "text/display_text.h"
#include "text/json_text.h"
#include "undo/replacement.h"
#include "undo/take_back.h"

namespace tool {
namespace {

constexpr char kNewest[] = "newest";  // what no number says

struct Options {
    std::string number = kNewest;
    bool list = false;
    bool dryRun = false;
    bool json = false;
    bool redo = false;
    bool force = false;
};

using Copies = std::vector<KeptCopy>;

std::string contentOf(KeptCopy const& copy) {
    if (!copy.isReadable)
        return "cannot be read";
    std::string names;
    for (ListEntries const& list : copy.lists)
        names += (names.empty() ? "" : ", ") + displayText(list.listName);
    return copy.lists.empty() ? "the whole database" : names;
}

std::string stateOf(KeptCopy const& copy, Copies const& copies) {
    return isTakenBack(copy, copies) ? "undone" : "";
}

void printCopies(Copies const& copies, bool json) {
    TextTable table(
        {{"No", Align::Right}, {"Time"}, {"Before"}, {"State"}, {"Content", Align::Left, kWraps}});
    Json rows = Json::array();
    for (KeptCopy const& copy : copies) {
        table.add({std::to_string(copy.number), copy.time, copy.command, stateOf(copy, copies),
                   contentOf(copy)});
        rows.push_back({{"number", copy.number},
                        {"time", copy.time},
                        {"before", copy.command},
                        {"undone", isTakenBack(copy, copies)},
                        {"content", contentOf(copy)}});
    }
    if (json)
        printJson(rows);
    else if (copies.empty())
        std::cout << "Nothing is kept of this database.\n";
    else
        table.print(std::cout);
}

// Each one more goes one further back; what "undo" itself wrote is for --redo.
KeptCopy const& newest(Copies const& copies, bool redo) {
    auto const found = std::find_if(copies.rbegin(), copies.rend(), [&](KeptCopy const& copy) {
        return redo ? copy.undoes != 0 : copy.undoes == 0 && !isTakenBack(copy, copies);
    });
    if (found == copies.rend())
        throw Failure(redo ? "nothing is taken back: there is nothing to do again"
                      : copies.empty()
                          ? "nothing is kept of this database: there is nothing to undo"
                          : "all that is kept is taken back already; --redo does the last again");
    return *found;
}

KeptCopy const& chosen(Copies const& copies, Options const& options) {
    if (options.number == kNewest)
        return newest(copies, options.redo);
    auto const number = wholeNumber(options.number);
    auto const found = std::find_if(copies.begin(), copies.end(), [&](KeptCopy const& copy) {
        return number && copy.number == *number;
    });
    if (found == copies.end())
        throw Failure("there is no kept copy '" + options.number +
                      "'; \"undo --list\" shows what there is");
    if (isTakenBack(*found, copies))
        throw Failure("copy " + options.number + " is taken back already; --redo does it again");
    return *found;
}

// Of an interrupted command only the database tells whether it had written.
bool wasWritten(std::string const& database, KeptCopy const& copy) {
    if (!copy.file.empty()) {
        std::string const now = copy.file + ".now";
        unlink(now.c_str());
        channel_database::copyToNewFile(database, now);
        auto const bytesOf = [](std::string const& file) {
            std::ostringstream bytes;
            bytes << std::ifstream(file, std::ios::binary).rdbuf();
            return bytes.str();
        };
        bool const isSame = bytesOf(now) == bytesOf(copy.file);
        unlink(now.c_str());
        return !isSame;
    }
    return std::any_of(copy.lists.begin(), copy.lists.end(), [](ListEntries const& list) {
        return readEntries(list.uuid).entries != list.entries;
    });
}

Copies settledCopies(std::string const& database) {
    UndoStore const store(database);
    std::unique_ptr<Session> session;
    std::vector<int> const untold = store.settle([&](KeptCopy const& copy) -> std::optional<bool> {
        try {
            if (session == nullptr)
                session = std::make_unique<Session>(database);
            return wasWritten(database, copy);
        } catch (Locked const&) {
            throw;
        } catch (Failure const&) {  // what it died in may be the reason
            return copy.file.empty() ? std::nullopt : std::optional(true);
        }
    });
    Copies copies = store.copies();
    for (int const number : untold) {  // none behind it is the newest
        KeptCopy copy;
        copy.number = number;
        copy.isReadable = false;
        copies.insert(std::find_if(copies.begin(), copies.end(),
                                   [&](KeptCopy const& each) { return each.number > number; }),
                      copy);
    }
    return copies;
}

// "" of what cannot be read, which may be the reason to take it back.
std::string digestOf(std::string const& database) {
    try {
        return fileDigest(database);
    } catch (Locked const&) {
        throw;
    } catch (Failure const&) {
        return "";
    }
}

Copies laterOnes(KeptCopy const& copy, Copies const& copies) {
    Copies later;
    std::copy_if(
        copies.begin(), copies.end(), std::back_inserter(later), [&](KeptCopy const& each) {
            return each.number > copy.number && each.undoes == 0 && !isTakenBack(each, copies);
        });
    return later;
}

// A whole database comes back with everything that was written since.
void checkLater(std::string const& database, KeptCopy const& copy, Copies const& laterCopies,
                Options const& options) {
    std::string later;
    for (KeptCopy const& each : laterCopies)
        later += "\n  " + std::to_string(each.number) + "  " + each.command + " of " + each.time;
    std::string const now = later.empty() ? digestOf(database) : "";
    if (!now.empty() && now != copy.content)
        later = copy.content.empty() ? "\n  whatever others wrote since: the copy does not tell"
                                     : "\n  what others wrote to the database since";
    else if (!later.empty())
        later += "\n  and whatever others wrote since";
    if (later.empty())
        return;
    later = "it would take back, too:" + later;
    if (!options.force && !options.dryRun)
        throw Failure(later + "\nnothing is written; --force takes all of it back");
    std::cerr << "channellist: " << displayLines(later) << "\n";
}

std::string lines(std::vector<std::string> const& texts) {
    std::string all;
    for (std::string const& text : texts)
        all += "\n  " + text;
    return all;
}

// Exit code 1 when something could not be brought back.
int takeBackLists(std::string const& database, KeptCopy const& copy, Options const& options) {
    Session session(database, options.dryRun ? Access::Read : Access::Write);
    if (options.dryRun)
        session.continueOnCopy();
    UndoStore store(database, !options.dryRun && (copy.undoes == 0 || options.force));
    if (copy.after.empty() && !options.force && !options.dryRun)
        throw Failure(
            "this copy does not tell what others wrote since; --force brings the lists back as "
            "they were");
    TakenBack const taken = takeBack(copy, options.force, store);
    std::string troubles;
    if (!taken.conflicts.empty())
        troubles += "others changed the same entries:" + lines(taken.conflicts);
    if (!taken.lost.empty())
        troubles += std::string(troubles.empty() ? "" : "\n") +
                    "cannot be brought back:" + lines(taken.lost);
    if (!troubles.empty() && !options.force)
        throw Failure(troubles + "\nnothing is written; --force takes back the rest");
    if (!troubles.empty())
        std::cerr << "channellist: " << displayLines(troubles) << "\n";
    for (std::string const& note : taken.notes)
        std::cerr << "channellist: " << displayText(note) << "\n";
    if (!taken.isWritten() && store.isTakenBack(copy.number))
        throw Failure("copy " + std::to_string(copy.number) + " was taken back meanwhile");
    std::vector<Change> const changes = differences(taken.before, taken.after);
    if (!changes.empty())
        printDifferences(changes);
    if (!taken.isWritten() && !options.dryRun && taken.lost.empty())
        store.remove(copy.number);  // it is taken back already, and would be in the way
    if (taken.isWritten() && !options.dryRun)
        printWritten("Written, and flushed to the disk.");
    else
        std::cout << (taken.isWritten() ? "Dry run: nothing is written.\n"
                                        : "Nothing to change.\n");
    return taken.lost.empty() ? kSuccess : kFailure;
}

int run(std::string const& database, Options const& options) {
    Copies const copies = settledCopies(database);
    if (options.list) {
        printCopies(copies, options.json);
        return kSuccess;
    }
    KeptCopy const& copy = chosen(copies, options);
    if (!copy.isReadable)
        throw Failure(
            "copy " + std::to_string(copy.number) +
            " cannot be read, and nothing is taken back; \"undo --list\" shows the others");
    std::cout << (copy.undoes != 0 ? "Doing again what \"" : "Taking back \"")
              << displayText(copy.command) << (copy.undoes != 0 ? "\" took back at " : "\" of ")
              << displayText(copy.time) << "\n";
    int code = kSuccess;
    bool const isRedo = copy.undoes != 0;
    if (!copy.file.empty()) {
        bool const isKept = !isRedo || options.force;
        Copies const later = laterOnes(copy, copies);
        std::vector<int> numbers;
        for (KeptCopy const& each : later)
            numbers.push_back(each.number);
        std::string const changes =
            bringBack(copy.file, database,
                      {options.dryRun, isKept ? "undo " + std::to_string(copy.number) : "",
                       isRedo ? 0 : copy.number, isRedo ? std::vector<int>() : numbers,
                       [&] { checkLater(database, copy, later, options); }});
        printReplacement(copy.file, database, changes, options.dryRun);
    } else {
        code = takeBackLists(database, copy, options);
    }
    if (isRedo && !options.dryRun)
        UndoStore(database).remove(copy.number);
    return code;
}

}  // namespace

void addUndoCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("undo", "Takes back what this user's last edit, import or restore wrote")
        .optionalArgument("NUMBER", options->number, "an older copy, as --list shows them")
        .flag("--list", options->list, "show what can be taken back")
        .flag("--redo", options->redo, "do again what the last \"undo\" took back")
        .flag("--force", options->force, "take back what others changed since, too")
        .flag("-n,--dry-run", options->dryRun, "show what would change, and write nothing")
        .json(options->json)
        .needs("--json", "--list")
        .excludes("--list", "NUMBER")
        .excludes("--redo", "NUMBER")
        .excludes("--redo", "--list")
        .footer(
            "\"edit\" and \"import --favourites\" keep the lists that they change, \"import "
            "--force\"\n"
            "\"restore\" and \"check --mend\" the whole database: the last ten copies, in "
            "$XDG_STATE_HOME/channellist\n"
            "or ~/.local/state/channellist. A list is taken back entry by entry, and keeps what\n"
            "others changed since; where they changed the same entries, or a later command would\n"
            "go with a whole database, that is said, and nothing is written without --force. Each\n"
            "\"undo\" goes one further back; --redo does again what the last one took back.\n" +
            narrowHelp(differenceColumns()) +
            "Examples:\n"
            "  channellist undo\n"
            "  channellist undo --list\n"
            "  channellist undo --redo")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
