// channellist edit LIST [OPERATION...]
#include <channellist-access/db_access.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <set>

#include "commands/commands.h"
#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/session.h"
#include "edit/everywhere.h"
#include "edit/merge.h"
#include "edit/rounds.h"
#include "edit/write_list.h"
#include "editing/question.h"
#include "editing/text_edit.h"
#include "failure.h"
#include "kept/undo_store.h"
#include "lists/current_keys.h"
#include "lists/difference.h"
#include "lists/operations.h"
#include "output/differences.h"
#include "output/print_rows.h"
#include "output/written.h"
#include "text/display_text.h"

namespace tool {
namespace {

struct Options {
    std::string list;
    std::vector<std::string> words;
    std::string from;  // file of the text, "-" for standard input
    Allowed allowed;
    bool dryRun = false;
    bool renumber = false;
    bool everywhere = false;
    bool json = false;
    bool noUndo = false;
    std::string database;
};

// Only FAV lists gain and lose services; in the others an edit changes numbers and hides.
void checkVerbs(List const& list, std::vector<Operation> const& operations) {
    for (Operation const& operation : operations) {
        bool const isOfFavLists = operation.verb == Verb::Add || operation.verb == Verb::Copy ||
                                  operation.verb == Verb::Remove;
        if (list.favIndex == 0 && isOfFavLists) {
            throw Failure(
                "services are added to and removed from FAV1 to FAV4 only; hide and"
                " restore them in " +
                    displayName(list),
                kUsage);
        }
    }
}

void report(Options const& options, Written const& written) {
    std::vector<Change> const changes = differences(written.before, written.after);
    std::string const result = changes.empty()  ? "Nothing to change."
                               : options.dryRun ? "Dry run: nothing is written."
                                                : "Written, and flushed to the disk.";
    bool const isWritten = !options.dryRun && !changes.empty();
    std::string last = result;
    if (options.json) {
        Json const all = {
            {"written", isWritten}, {"result", result}, {"changes", differencesJson(changes)}};
        last = dumpJson(all, 2);
    } else if (!changes.empty()) {
        printDifferences(changes);
    }
    if (isWritten)
        printWritten(last);
    else
        std::cout << last << "\n";
}

std::vector<Change> changesBetween(List const& list, std::vector<Entry> const& before,
                                   std::vector<Entry> const& after) {
    return told(differences({{list.uuid, displayName(list), before}},
                            {{list.uuid, displayName(list), after}}));
}

std::string describe(Change const& change) {
    return change.name + " " + joined(change.what, " and ") +
           (change.before.empty() || change.before == change.after ? ""
                                                                   : " from " + change.before) +
           (change.after.empty() || change.before == change.after ? "" : " to " + change.after);
}

// A line for each entry that others changed.
std::string tellOthers(List const& list, std::vector<Entry> const& before,
                       std::vector<Entry> const& after) {
    std::string lines = displayName(list) + " has changed meanwhile:";
    for (Change const& change : changesBetween(list, before, after))
        lines += "\n  others: " + describe(change);
    return lines;
}

void applyOperations(Options const& options, std::vector<Operation> const& operations,
                     Keeping const& keeping) {
    Material material;
    auto const see = [&] {
        FrozenDatabase const frozen;
        material = gather(operations);
        return seeList(findList(options.list));
    };
    auto const want = [&](SeenList const& seen) {
        ListContent content(displayName(seen.list), seen.entries, seen.reserved);
        apply(operations, material, content);
        return WantedList{content.entries(), options.renumber};
    };
    report(options, writeAgainAndAgain(see, want, keeping));
}

// Hides or restores services everywhere, in however many rounds beside others: one command for
// undo.
class EverywhereWrite {
  public:
    EverywhereWrite(Options const& options, Keeping const& keeping)
        : options_(options), keeping_(keeping) {}

    // False when others came in between.
    bool writeRound(std::vector<Operation> const& operations) {
        std::vector<ListEdit> edits;
        bool const isFirst = total_.ending != Ending::Written;
        if (isFirst)
            total_ = {};
        {
            FrozenDatabase const frozen;
            if (!marks_)  // a number may be another service's in the next round
                marks_ = marksOf(seeList(findList(options_.list)), operations);
            edits = editsEverywhere(*marks_, options_.renumber);
            follow(reachedBy(edits), total_);
        }
        if (isFirst && !edits.empty()) {
            keeping_.store.discard();
            keeping_.store.keepLists(keeping_.command, total_.before, expectedLists(edits));
        }
        return channel_lists::writeRound(std::move(edits), total_);
    }

    Written const& end() {
        keepRounds(total_, keeping_.store);
        return total_;
    }

  private:
    Options const& options_;
    Keeping const& keeping_;
    std::optional<std::vector<Mark>> marks_;
    Written total_;
};

void applyEverywhere(Options const& options, std::vector<Operation> const& operations,
                     Keeping const& keeping) {
    constexpr int kMostRounds = 50;
    EverywhereWrite write(options, keeping);
    try {
        for (int round = 1; !write.writeRound(operations); ++round)
            if (round == kMostRounds)
                throw Failure("others change the lists all the time");
    } catch (std::exception const& error) {
        if (write.end().ending != Ending::Written)
            throw;
        if (!options.json)
            printDifferences(differences(write.end().before, write.end().after));
        throw Failure(error.what() + std::string("; a part is written"));
    }
    report(options, write.end());
}

// A file says what the list is to be, whatever it was: what comes in between is told. Where a scan
// gave other keys to the services that join, they are looked up again.
void takeFile(Options const& options, std::string const& text, Keeping const& keeping) {
    constexpr int kMostTries = 20;
    std::string const source = options.from == "-" ? "input" : options.from;
    for (int tries = 0; tries < kMostTries; ++tries) {
        Sight const sight = look(options.list);
        std::vector<Entry> const after = contentOf(sight, text, source, options.allowed);
        Written const written = writeLists({{sight.seen, {after, options.renumber}}}, keeping);
        if (written.ending != Ending::Overtaken)
            return report(options, written);
        SeenList const now = look(options.list).seen;
        if (now.stored != sight.seen.stored)
            throw Failure(tellOthers(sight.seen.list, sight.seen.entries, now.entries) +
                          "\nnothing is written");
    }
    throw Failure("the services get other keys all the time; nothing is written");
}

bool confirm(ListEdit const& edit, EditorSession const& editor) {
    auto const show = [&](std::ostream& out) {
        printDifferences(differences(edit.seen.reached, expectedLists(edit)), out);
    };
    std::string const name = displayText(displayName(edit.seen.list));
    return ask(show, "Your text is in " + displayText(editor.path()) +
                         " until it is written. Write this to " + name + "?");
}

// Where nobody can be asked, an editor that failed may have left a text without an entry.
void checkConsent(ListEdit const& edit, EditorSession const& editor) {
    if (!canAsk() && edit.wanted.entries.empty())
        throw Failure("the text names no service; nothing is written (--from and --empty would)");
    if (canAsk() && !confirm(edit, editor))
        throw Failure("nothing is written");
}

// What was wanted of the list as it was seen, wanted of the list as it is now. None where the user
// left it open.
std::optional<std::vector<Entry>> mergeInto(Sight const& now, Sight const& then,
                                            std::vector<Entry> const& wanted,
                                            EditorSession& editor) {
    List const& list = now.seen.list;
    Merge merged = merge(then.seen.entries, now.seen.entries, wanted, now.seen.reserved);
    std::cerr << "channellist: "
              << displayLines(tellOthers(list, then.seen.entries, now.seen.entries)) << "\n";
    for (Change const& change : changesBetween(list, then.seen.entries, wanted))
        std::cerr << "  you: " << displayText(describe(change)) << "\n";
    if (!merged.conflicts.empty())
        return editor.resolve(now, merged);
    for (std::string const& note : merged.notes)
        std::cerr << "  merged: " << displayText(note) << "\n";
    return std::move(merged.entries);
}

void checkJoining(std::vector<Entry> const& wanted, Sight const& now) {
    std::set<unsigned int> held;
    std::set<std::pair<unsigned int, std::string>> joining;
    for (Entry const& entry : now.seen.entries)
        held.insert(entry.serviceId);
    for (Entry const& entry : now.joining)
        joining.emplace(entry.serviceId, entry.uuid);
    for (Entry const& entry : wanted)
        if (held.count(entry.serviceId) == 0 && joining.count({entry.serviceId, entry.uuid}) == 0)
            throw Failure(entry.name + " is in the database no more; nothing is written");
}

// An unchanged text, and a "no", leave everything as it is. What others write while the editor is
// open, or the question, is merged.
void editInEditor(Options const& options, Keeping const& keeping) {
    EditorSession editor;
    Sight sight = look(options.list);
    std::optional<std::vector<Entry>> wanted = editor.edit(sight);
    bool const isUnchanged = !wanted;
    Written written;
    while (wanted) {
        std::optional<FrozenDatabase> frozen(std::in_place);
        Sight now = look(sight.seen.list.uuid);
        CurrentKeys keys;
        frozen.reset();
        keys.giveTo(*wanted);
        keys.giveTo(sight.seen.entries);
        if (now.seen.entries != sight.seen.entries) {
            wanted = mergeInto(now, sight, *wanted, editor);
            if (!wanted)
                throw Failure("nothing is written");
        }
        checkJoining(*wanted, now);
        sight = std::move(now);
        ListEdit const edit{sight.seen, {*wanted, options.renumber}};
        if (!options.dryRun && *wanted != sight.seen.entries)
            checkConsent(edit, editor);
        written = writeLists({edit}, keeping);
        if (written.ending != Ending::Overtaken)
            break;
    }
    report(options, written);
    if (!options.dryRun || isUnchanged)
        editor.done();
}

void checkUsage(Options const& options, std::vector<Operation> const& operations) {
    if (!operations.empty() && !options.from.empty())
        throw Failure("edit takes operations or --from, not both", kUsage);
    bool const marksOnly =
        std::all_of(operations.begin(), operations.end(), [](Operation const& each) {
            return each.verb == Verb::Hide || each.verb == Verb::Restore;
        });
    if (options.everywhere && (operations.empty() || !marksOnly))
        throw Failure("--everywhere takes hide and restore alone", kUsage);
}

int run(std::string const& database, Options const& options) {
    std::vector<Operation> const operations = parseOperations(options.words, options.list);
    checkUsage(options, operations);
    std::string const text = options.from.empty() ? std::string() : readText(options.from);
    Session session(database, options.dryRun ? Access::Read : Access::Write);
    List const list = findList(options.list);
    checkVerbs(list, operations);
    if (options.dryRun)
        session.continueOnCopy();
    UndoStore undo(options.database, !options.dryRun && !options.noUndo);
    Keeping const keeping{undo, "edit " + displayName(list)};
    if (!options.from.empty())
        takeFile(options, text, keeping);
    else if (operations.empty() && !options.renumber)
        editInEditor(options, keeping);
    else if (options.everywhere)
        applyEverywhere(options, operations, keeping);
    else
        applyOperations(options, operations, keeping);
    return kSuccess;
}

}  // namespace

void addEditCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("edit", "Changes a list")
        .argument("LIST", options->list, kListHelp)
        .arguments("OPERATION", options->words, 0, kAnyNumber, "what to do, see below")
        .option("--from", options->from, "bring the list to what this file says, - for the input")
        .flag("--empty", options->allowed.empty, "take a text without an entry, too")
        .flag("--skip-missing", options->allowed.missing,
              "leave out what the text names and this database lacks")
        .flag("-n,--dry-run", options->dryRun, "edit a copy in memory, and show what would change")
        .flag("--renumber", options->renumber, "close the gaps in FAV lists, see below")
        .flag("--everywhere", options->everywhere, "hide and restore in every list, see below")
        .needs("--empty", "--from")
        .needs("--skip-missing", "--from")
        .noUndo(options->noUndo)
        .json(options->json)
        .footer(
            "Without an operation the list is opened in $VISUAL, $EDITOR or else vi, and what the\n"
            "editor made of it is written. Operations, done one after the other:\n"
            "  add SERVICE [at NUMBER]  to FAV1 to FAV4, from the list of all services\n"
            "  remove SERVICE           from FAV1 to FAV4\n"
            "  move SERVICE to NUMBER   those between the old and the new number close up\n"
            "  swap SERVICE SERVICE     each takes the other's number\n"
            "  hide SERVICE             in other lists, in FAV1 to FAV4 too\n"
            "  restore SERVICE          shows it again\n"
            "  sort by ORDER [RANGE]    by name, number in all or provider\n"
            "  copy LIST [at NUMBER]    adds what is shown in another list to FAV1 to FAV4\n"
            "A SERVICE is its channel number in the list, its name or uuid, or id:N for the\n"
            "database key. Several at once, but for swap: 200-209, 30- for all from there on, or "
            "a\n"
            "name with * and ?. --everywhere hides or restores in every list that holds the\n"
            "service. --renumber closes the gaps in the list when it is FAV1 to FAV4, else in\n"
            "those of them that hold a service that is hidden or restored.\n"
            "--from takes a text as \"channellist list\" prints it, edited: its comments explain\n"
            "how; or a table as \"export --format csv\" does. Everything wrong in it is told at "
            "once, and nothing is written then.\n" +
            narrowHelp(differenceColumns()) +
            "Examples:\n"
            "  channellist edit FAV1 add 'arte HD' at 3 remove VOX --dry-run\n"
            "  channellist edit FAV2 move 7 to 1 --renumber\n"
            "  channellist edit FAV1 move 200-209 to 20 remove 'RTL*'\n"
            "  channellist edit FAV1 sort by name 30-\n"
            "  channellist edit FAV2 copy FAV1 at 10\n"
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
