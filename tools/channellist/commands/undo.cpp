// channellist undo [NUMBER]
#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>

#include <algorithm>
#include <iostream>
#include <memory>

#include "commands/commands.h"
#include "database/session.h"
#include "edit/write_list.h"
#include "failure.h"
#include "lists/difference.h"
#include "lists/text_services.h"
#include "output/differences.h"
#include "output/print_rows.h"
#include "output/replacement.h"
#include "output/text_table.h"
#include "text/display_text.h"
#include "text/json_text.h"
#include "undo/replacement.h"
#include "undo/undo_store.h"

namespace tool {
namespace {

struct Options {
    std::string number;
    bool list = false;
    bool dryRun = false;
    bool json = false;
};

std::string contentOf(KeptCopy const& copy) {
    std::string names;
    for (ListEntries const& list : copy.lists)
        names += (names.empty() ? "" : ", ") + displayText(list.listName);
    return copy.lists.empty() ? "the whole database" : names;
}

void printCopies(std::vector<KeptCopy> const& copies, bool json) {
    TextTable table({{"No", Align::Right}, {"Time"}, {"Before"}, {"Content", Align::Left, kWraps}});
    Json rows = Json::array();
    for (KeptCopy const& copy : copies) {
        table.add({std::to_string(copy.number), copy.time, copy.command, contentOf(copy)});
        rows.push_back({{"number", copy.number},
                        {"time", copy.time},
                        {"before", copy.command},
                        {"content", contentOf(copy)}});
    }
    if (json)
        printJson(rows);
    else if (copies.empty())
        std::cout << "Nothing is kept of this database.\n";
    else
        table.print(std::cout);
}

KeptCopy const& chosen(std::vector<KeptCopy> const& copies, std::string const& word) {
    if (copies.empty())
        throw Failure("nothing is kept of this database: there is nothing to undo");
    if (word.empty())
        return copies.back();
    auto const number = wholeNumber(word);
    auto const found = std::find_if(copies.begin(), copies.end(), [&](KeptCopy const& copy) {
        return number && copy.number == *number;
    });
    if (found == copies.end())
        throw Failure("there is no kept copy '" + word + "'; \"undo --list\" shows what there is");
    return *found;
}

// The services of the kept entries as the database has them now, by key, triplet and name.
std::vector<Entry> keptEntries(ListEntries const& kept, std::vector<Entry> const& now,
                               std::vector<Entry> const& all) {
    TextServices const services(now, all);
    std::vector<Entry> entries;
    for (Entry const& entry : kept.entries) {
        TextLine line;
        line.name = entry.name;
        line.triplet = entry.triplet;
        line.key = entry.serviceId;
        std::string error;
        Entry const* const service = services.find(line, error);
        if (service == nullptr) {
            std::cerr << "channellist: " << displayText(kept.listName) << ": "
                      << displayText(entry.name) << " is left out: " << displayLines(error) << "\n";
            continue;
        }
        entries.push_back(*service);
        entries.back().number = entry.number;
        entries.back().deleted = entry.deleted;
    }
    return entries;
}

// Nothing joins or leaves a list that is none of FAV1 to FAV4.
std::vector<Entry> withKept(std::vector<Entry> const& now, std::vector<Entry> const& kept) {
    std::vector<Entry> entries = now;
    std::vector<bool> isTaken(kept.size());
    for (Entry& entry : entries) {
        for (std::size_t i = 0; i < kept.size(); ++i) {
            if (isTaken[i] || kept[i].serviceId != entry.serviceId)
                continue;
            isTaken[i] = true;
            entry.number = kept[i].number;
            entry.deleted = kept[i].deleted;
            break;
        }
    }
    return entries;
}

void bringBackList(ListEntries const& kept, std::vector<Entry> const& all) {
    std::vector<List> const lists = allLists();
    auto const list = std::find_if(lists.begin(), lists.end(),
                                   [&](List const& each) { return each.uuid == kept.uuid; });
    if (list == lists.end())
        throw Failure("the database has no list " + displayText(kept.listName) + " any more");
    Entries const now = readEntries(list->uuid);
    if (!now.complete)
        throw Failure("not all services of " + displayName(*list) +
                      " could be read, and an edit would lose the others; \"channellist check\" "
                      "tells why");
    std::vector<Entry> const entries = keptEntries(kept, now.entries, all);
    bool const isFav = list->favIndex != 0;
    std::vector<Entry> const after = isFav ? entries : withKept(now.entries, entries);
    if (after == now.entries)
        return;
    UndoStore off("", false);
    if (writeLists({{seeList(*list), {after, false}}}, {off, "undo"}).ending == Ending::Overtaken)
        throw Failure(displayName(*list) + " has changed meanwhile");
}

// The list that was edited stands first: what it hides or shows, it does so in the FAV lists, too.
Snapshot inOrder(Snapshot lists) {
    std::stable_partition(lists.begin(), lists.end(), [](ListEntries const& list) {
        auto const all = allLists();
        return std::any_of(all.begin(), all.end(), [&](List const& each) {
            return each.uuid == list.uuid && each.favIndex == 0;
        });
    });
    return lists;
}

List editedList(KeptCopy const& copy) {
    for (ListEntries const& kept : copy.lists)
        for (List const& list : allLists())
            if (list.uuid == kept.uuid && list.favIndex == 0)
                return list;
    return List();
}

void bringBackLists(std::string const& database, KeptCopy const& copy, Options const& options) {
    Session session(database, options.dryRun ? Access::Read : Access::Write);
    if (options.dryRun)
        session.continueOnCopy();
    Snapshot const before = takeSnapshot(editedList(copy));
    UndoStore store(database, !options.dryRun);
    store.keepLists("undo " + std::to_string(copy.number), before);
    std::vector<Entry> const all = readEntries(allServicesList().uuid).entries;
    auto const now = [&] { return takeSnapshot(editedList(copy)); };
    try {
        for (ListEntries const& list : inOrder(copy.lists))
            bringBackList(list, all);
    } catch (...) {
        store.keepOnlyChanged(now());  // what is written can be taken back
        throw;
    }
    Snapshot const after = now();
    store.keepOnlyChanged(after);
    std::vector<Change> const changes = differences(before, after);
    if (changes.empty()) {
        std::cout << "Nothing to change.\n";
        return;
    }
    printDifferences(changes);
    std::cout << (options.dryRun ? "Dry run: nothing is written.\n"
                                 : "Written, and flushed to the disk.\n");
}

int run(std::string const& database, Options const& options) {
    std::vector<KeptCopy> const copies = UndoStore(database).copies();
    if (options.list) {
        printCopies(copies, options.json);
        return kSuccess;
    }
    KeptCopy const& copy = chosen(copies, options.number);
    std::cout << "Taking back \"" << displayText(copy.command) << "\" of " << displayText(copy.time)
              << "\n";
    if (!copy.file.empty())
        printReplacement(
            copy.file, database,
            bringBack(copy.file, database, {options.dryRun, "undo " + std::to_string(copy.number)}),
            options.dryRun);
    else
        bringBackLists(database, copy, options);
    return kSuccess;
}

}  // namespace

void addUndoCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("undo", "Takes back what this user's last edit, import or restore wrote")
        .optionalArgument("NUMBER", options->number, "an older copy, as --list shows them")
        .flag("--list", options->list, "show what can be taken back")
        .flag("-n,--dry-run", options->dryRun, "show what would change, and write nothing")
        .json(options->json)
        .needs("--json", "--list")
        .excludes("--list", "NUMBER")
        .footer(
            "\"edit\" and \"import --favourites\" keep the lists that they change, \"import "
            "--force\"\n"
            "\"restore\" and \"check --mend\" the whole database: the last ten copies, in "
            "$XDG_STATE_HOME/channellist\n"
            "or ~/.local/state/channellist. \"undo\" keeps what it takes back in the same way, so\n"
            "that a second one takes back the first.\n" +
            narrowHelp(differenceColumns()) +
            "Examples:\n"
            "  channellist undo\n"
            "  channellist undo --list")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
