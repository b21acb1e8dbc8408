// channellist import CHANNELS.CONF DATABASE
#include <channel-database/channel_list.h>
#include <channel-database/database_file.h>

#include <algorithm>
#include <iostream>
#include <map>

#include "commands/commands.h"
#include "database/content_digest.h"
#include "database/frozen_database.h"
#include "database/session.h"
#include "database/waiting.h"
#include "edit/favourites.h"
#include "failure.h"
#include "kept/undo_store.h"
#include "lists/difference.h"
#include "output/differences.h"
#include "output/progress.h"
#include "output/written.h"
#include "text/display_text.h"

namespace tool {
namespace {

using namespace channel_database;

struct Options {
    std::string list;
    std::string database;
    std::string favList;
    bool force = false;
    bool favourites = false;
    bool dryRun = false;
    bool noUndo = false;
    bool verbose = false;
};

// Shows how far a long import is.
class Progress {
  public:
    Progress() = default;
    ~Progress() { endProgress(); }
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    void operator()(std::size_t done, std::size_t total) {
        constexpr std::size_t kStep = 500;
        if (done % kStep == 0)
            showProgress("Importing " + std::to_string(done) + " of " + std::to_string(total));
    }
};

// By reason, each with its first lines.
void reportRejectedLines(ChannelsConf const& list, Options const& options) {
    std::size_t const most = options.verbose ? list.rejected.size() : 3;
    std::vector<std::string> reasons;  // in the order in which they come up
    std::map<std::string, std::vector<RejectedLine const*>> lines;
    for (RejectedLine const& rejected : list.rejected) {
        auto& same = lines[rejected.reason];
        if (same.empty())
            reasons.push_back(rejected.reason);
        same.push_back(&rejected);
    }
    for (std::string const& reason : reasons) {
        auto const& same = lines[reason];
        std::cerr << "channellist: skipped " << same.size() << ": " << displayText(reason) << "\n";
        for (std::size_t i = 0; i < std::min(most, same.size()); ++i) {
            std::string const& file = same[i]->file.empty() ? options.list : same[i]->file;
            std::cerr << "  " << displayText(file);
            if (same[i]->line != 0)
                std::cerr << ":" << same[i]->line;
            std::cerr << (same[i]->text.empty() ? "" : ": ") << displayText(same[i]->text) << "\n";
        }
        if (same.size() > most)
            std::cerr << "  and " << same.size() - most << " more; --verbose names them\n";
    }
    for (std::string const& note : list.notes)
        std::cerr << "channellist: " << displayText(note) << "\n";
}

void makeDatabase(ChannelsConf const& list, Options const& options) {
    for (OtherEntry const& other : list.others)
        std::cerr << "channellist: " << displayText(options.list) << ":" << other.line
                  << ": skipped: no DVB service; only --favourites finds it again\n";
    tellWaitsFor(options.database);
    UndoStore undo(options.database, options.force && !options.noUndo);
    std::size_t services = 0;
    std::string content;
    {
        Progress progress;
        services = makeDatabaseFile(list, options.database, options.force, std::ref(progress),
                                    [&](sqlite3* made) {
                                        content = contentDigest(made);
                                        undo.keepDatabase("import --force", content);
                                    });
    }
    undo.confirm(content);
    printWritten(displayText(options.database) + ": " + std::to_string(services) + " channels, " +
                 std::to_string(list.groups.size()) + " groups, " +
                 std::to_string(list.rejected.size() + list.others.size()) + " lines skipped");
}

void tell(std::vector<Favourites> const& all) {
    for (Favourites const& favourites : all) {
        std::string const start =
            "channellist: " + displayText(displayName(favourites.edit.seen.list)) + ": ";
        for (std::string const& note : favourites.notes)
            std::cerr << start << displayText(note) << "\n";
        for (std::string const& channel : favourites.notFound)
            std::cerr << start << "the database has no service for " << displayText(channel)
                      << "\n";
    }
    for (Favourites const& favourites : all) {
        std::cout << displayText(displayName(favourites.edit.seen.list)) << ": "
                  << favourites.edit.wanted.entries.size() << " services, "
                  << favourites.notFound.size() << " not found\n";
    }
}

void writeFavourites(ChannelsConf const& list, Options const& options) {
    Session session(options.database, options.dryRun ? Access::Read : Access::Write);
    if (options.dryRun)
        session.continueOnCopy();
    std::vector<Favourites> all;
    {
        FrozenDatabase const frozen;
        all = findFavourites(list, options.favList);
    }
    UndoStore undo(options.database, !options.dryRun && !options.noUndo);
    std::vector<ListEdit> edits;
    edits.reserve(all.size());
    for (Favourites const& favourites : all)
        edits.push_back(favourites.edit);
    Written const written = writeLists(edits, {undo, "import --favourites"});
    std::vector<Change> const changes = differences(written.before, written.after);
    if (!changes.empty())
        printDifferences(changes);
    tell(all);
    if (written.overtaken) {
        throw Failure(
            displayName(*written.overtaken) + " has changed meanwhile; " +
            (changes.empty() ? "nothing is written" : "only what is shown above is written"));
    }
    if (changes.empty() || options.dryRun)
        std::cout << (changes.empty() ? "Nothing to change.\n" : "Dry run: nothing is written.\n");
    else
        printWritten("Written, and flushed to the disk.");
}

int run(std::string const& setDatabase, Options options) {
    bool const isNamed = !options.database.empty();
    if (isNamed && setDatabase != kSetDatabase && setDatabase != options.database)
        throw Failure("the database is named twice, by --db and behind the list", kUsage);
    if (!isNamed) {
        if (!options.favourites)
            throw Failure("import needs the name of the database to make", kUsage);
        options.database = setDatabase;
    }
    ChannelsConf const list = readChannelList(options.list);
    reportRejectedLines(list, options);
    (options.favourites ? writeFavourites : makeDatabase)(list, options);
    return kSuccess;
}

}  // namespace

void addImportCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("import", "Makes a channel database from a channel list of another program")
        .argument("CHANNELS", options->list,
                  "channels.conf, lamedb, a bouquet, a folder or archive of them, M3U, or "
                  "libdvbv5's; - for "
                  "the input")
        .optionalArgument("DATABASE", options->database,
                          "the database to make, or to write favourites to")
        .flag("--force", options->force, "replace the content of an existing database")
        .flag("--favourites", options->favourites,
              "write FAV1 to FAV4 from the groups of these names")
        .option("--list", options->favList, "write all channels to this FAV list")
        .needs("--list", "--favourites")
        .excludes("--force", "--favourites")
        .flag("-n,--dry-run", options->dryRun, "show what --favourites would change")
        .needs("--dry-run", "--favourites")
        .flag("--verbose", options->verbose, "name every line that is skipped")
        .noUndo(options->noUndo)
        .footer(
            "The format is told from the content. Of Enigma2, lamedb makes a database, a bouquet\n"
            "(userbouquet.NAME.tv) favourites, and a folder with bouquets.tv, or a .tar.gz or\n"
            ".zip of it, both.\n"
            "Lines that cannot be read are counted by reason and skipped. The groups FAV1 to FAV4 "
            "become "
            "these\n"
            "lists, other groups lists of their own names. --favourites writes to an existing\n"
            "database, that of --db when none is named, and finds each channel there by its DVB\n"
            "triplet (original network, transport stream and service id), or else by name and "
            "kind\n"
            "where one alone fits. Numbers come from \":@N\" lines; what the list holds already "
            "stays\n"
            "as it is. What \"channellist export\" prints is taken back whole.\n" +
            narrowHelp(differenceColumns()) +
            "Examples:\n"
            "  channellist import channels.conf servicelist.db\n"
            "  channellist import --favourites favourites.conf servicelist.db --dry-run\n"
            "  channellist import --favourites userbouquet.sports.tv --list FAV3")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
