// channellist edit LIST [OPERATION...]
#include <channellist-access/db_access.h>

#include <iostream>

#include "commands/commands.h"
#include "database/list_naming.h"
#include "database/query.h"
#include "database/session.h"
#include "edit/request.h"
#include "editing/text_edit.h"
#include "failure.h"
#include "lists/difference.h"
#include "lists/operations.h"
#include "lists/reserved_numbers.h"
#include "output/differences.h"
#include "output/print_rows.h"
#include "text/display_text.h"
#include "undo/undo_store.h"

namespace tool {
namespace {

struct Options {
    std::string list;
    std::vector<std::string> words;
    std::string from;  // file of the text, "-" for standard input
    bool dryRun = false;
    bool renumber = false;
    bool json = false;
    bool noUndo = false;
    std::string database;
};

// Only FAV lists gain and lose services; in the others an edit changes numbers and hides.
void checkVerbs(List const& list, std::vector<Operation> const& operations) {
    for (Operation const& operation : operations) {
        if (list.favIndex == 0 && (operation.verb == Verb::Add || operation.verb == Verb::Remove)) {
            throw Failure(
                "services are added to and removed from FAV1 to FAV4 only; hide and"
                " restore them in " +
                    displayName(list),
                kUsage);
        }
    }
}

std::vector<Entry> storedEntries(List const& list) {
    Entries stored = readEntries(list.uuid);
    if (!stored.complete) {
        throw Failure(
            "not all services could be read, and an edit would lose the others; \"channellist "
            "check\" tells why");
    }
    return std::move(stored.entries);
}

std::vector<Entry> addableServices(std::vector<Operation> const& operations) {
    for (Operation const& operation : operations)
        if (operation.verb == Verb::Add)
            return readEntries(allServicesList().uuid).entries;
    return {};
}

// A FAV list's request drops stored items that the library does not deliver.
void noteUndelivered(List const& list, std::size_t delivered) {
    Query count(db, "SELECT count(*) FROM FavoriteItem WHERE FavoriteId = ?");
    count.bind(std::int64_t{list.pid}).next();
    auto const lost = count.number(0) - static_cast<std::int64_t>(delivered);
    if (list.favIndex != 0 && lost > 0) {
        std::cerr << "channellist: " << displayText(displayName(list)) << " holds " << lost
                  << " items that it cannot show; the edit drops them\n";
    }
}

void report(Options const& options, std::vector<Change> const& changes) {
    std::string const result = changes.empty()  ? "Nothing to change."
                               : options.dryRun ? "Dry run: nothing is written."
                                                : "Written, and flushed to the disk.";
    if (options.json) {
        printJson({{"written", !options.dryRun && !changes.empty()},
                   {"result", result},
                   {"changes", differencesJson(changes)}});
        return;
    }
    if (!changes.empty())
        printDifferences(changes);
    std::cout << result << "\n";
}

// Brings the list to its new content, in one request.
void write(Session& session, Options const& options, List const& list,
           std::vector<Entry> const& before, std::vector<Entry> const& after) {
    bool const isFav = list.favIndex != 0;
    if (options.dryRun)
        session.continueOnCopy();
    Snapshot const stored = takeSnapshot(list);
    UndoStore undo(options.database, !options.dryRun && !options.noUndo);
    if (after != before) {
        noteUndelivered(list, before.size());
        undo.keepLists("edit " + displayName(list), stored);
        submit(isFav ? favListRequest(list, after)
                     : otherListRequest(list, before, after, options.renumber));
    }
    if (isFav && options.renumber) {
        if (after == before)
            undo.keepLists("edit " + displayName(list) + " --renumber", stored);
        renumber(list);
    }
    Snapshot const written = takeSnapshot(list);
    undo.keepOnlyChanged(written);
    report(options, differences(stored, written));
}

// An unchanged text, and a "no", leave everything as it is.
void editInEditor(Session& session, Options const& options, List const& list,
                  std::vector<Entry> const& before) {
    EditorFile file;
    auto const after = contentFromEditor(list, before, file);
    if (!after || *after == before)
        report(options, {});
    else if (options.dryRun || options.json || confirm(list, before, *after))
        write(session, options, list, before, *after);
    else
        throw Failure("nothing is written");
    file.remove();
}

void checkUsage(Options const& options, std::vector<Operation> const& operations) {
    if (!operations.empty() && !options.from.empty())
        throw Failure("edit takes operations or --from, not both", kUsage);
}

int run(std::string const& database, Options const& options) {
    std::vector<Operation> const operations = parseOperations(options.words);
    checkUsage(options, operations);
    Session session(database, options.dryRun ? Access::Read : Access::Write);
    List const list = findList(options.list);
    checkVerbs(list, operations);
    std::vector<Entry> const before = storedEntries(list);
    if (!options.from.empty()) {
        write(session, options, list, before, contentFromFile(list, before, options.from));
    } else if (operations.empty() && !options.renumber) {
        editInEditor(session, options, list, before);
    } else {
        ListContent content(displayName(list), before, reservedNumbers(list));
        apply(operations, addableServices(operations), content);
        write(session, options, list, before, content.entries());
    }
    return kSuccess;
}

}  // namespace

void addEditCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("edit", "Changes a list")
        .argument("LIST", options->list, kListHelp)
        .arguments("OPERATION", options->words, 0, kAnyNumber, "what to do, see below")
        .option("--from", options->from, "bring the list to what this file says, - for the input")
        .flag("-n,--dry-run", options->dryRun, "edit a copy in memory, and show what would change")
        .flag("--renumber", options->renumber, "close the gaps in FAV lists, see below")
        .noUndo(options->noUndo)
        .json(options->json)
        .footer(
            "Without an operation the list is opened in $VISUAL, $EDITOR or else vi, and what the\n"
            "editor made of it is written. Operations, done one after the other:\n"
            "  add SERVICE [at NUMBER]  to FAV1 to FAV4, from the list of all services\n"
            "  remove SERVICE           from FAV1 to FAV4\n"
            "  move SERVICE to NUMBER   those between the old and the new number close up\n"
            "  hide SERVICE             marks it deleted; in other lists, in FAV1 to FAV4 too\n"
            "  restore SERVICE          takes the mark off\n"
            "A SERVICE is its channel number in the list, its name or uuid, or id:N for the\n"
            "database key. --renumber closes the gaps in the list when it is FAV1 to FAV4, else\n"
            "in those of them that hold a service that is hidden or restored.\n"
            "--from takes a text as \"channellist list\" prints it, edited: its comments explain\n"
            "how; or a table as \"export --format csv\" does. Everything wrong in it is told at "
            "once, and nothing is written then.\n" +
            narrowHelp(differenceColumns()) +
            "Examples:\n"
            "  channellist edit FAV1 add 'arte HD' at 3 remove VOX --dry-run\n"
            "  channellist edit FAV2 move 7 to 1 --renumber\n"
            "  channellist edit all hide id:21 --renumber\n"
            "  channellist edit FAV1 -- remove '-Radio-'    (what follows -- is no option)\n"
            "  channellist edit FAV1\n"
            "  channellist list FAV1 > mine.txt; channellist edit FAV1 --from mine.txt")
        .action([options](std::string const& database) {
            options->database = database;
            return run(database, *options);
        });
}

}  // namespace tool
