// channellist import CHANNELS.CONF DATABASE
#include <channel-database/database_file.h>
#include <unistd.h>

#include <iostream>

#include "commands/commands.h"
#include "database/session.h"
#include "edit/difference.h"
#include "edit/favourites.h"
#include "edit/request.h"
#include "failure.h"

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
};

// Shows how far a long import is, on a terminal only.
class Progress {
  public:
    ~Progress() {
        if (shown_)
            std::cerr << "\r\x1b[K" << std::flush;
    }
    void operator()(std::size_t done, std::size_t total) {
        constexpr std::size_t kStep = 500;
        if (terminal_ && done % kStep == 0) {
            std::cerr << "\rImporting " << done << " of " << total << std::flush;
            shown_ = true;
        }
    }

  private:
    bool terminal_ = isatty(STDERR_FILENO) == 1;
    bool shown_ = false;
};

void reportRejectedLines(ChannelsConf const& list, std::string const& path) {
    for (RejectedLine const& rejected : list.rejected)
        std::cerr << path << ":" << rejected.line << ": skipped: " << rejected.reason << "\n";
}

void makeDatabase(ChannelsConf const& list, Options const& options) {
    {
        Progress progress;
        makeDatabaseFile(list, options.database, options.force, std::ref(progress));
    }
    std::cout << options.database << ": " << list.channels.size() << " channels, "
              << list.groups.size() << " groups, " << list.rejected.size() << " lines skipped\n";
}

void writeFavourites(ChannelsConf const& list, Options const& options) {
    Session session(options.database, options.dryRun ? Access::Read : Access::Write);
    if (options.dryRun)
        session.continueOnCopy();
    std::vector<Favourites> const all = findFavourites(list, options.favList);
    Snapshot const before = takeSnapshot(List());
    for (Favourites const& favourites : all) {
        submit(favListRequest(favourites.list, favourites.entries));
        for (std::string const& channel : favourites.notFound) {
            std::cerr << "channellist: " << displayName(favourites.list)
                      << ": the database has no service for " << channel << "\n";
        }
    }
    printDifferences(differences(before, takeSnapshot(List())));
    for (Favourites const& favourites : all) {
        std::cout << displayName(favourites.list) << ": " << favourites.entries.size()
                  << " services, " << favourites.notFound.size() << " not found\n";
    }
    std::cout << (options.dryRun ? "Dry run: nothing is written.\n" : "Written.\n");
}

int run(std::string const& setDatabase, Options options) {
    if (options.database.empty()) {
        if (!options.favourites)
            throw Failure("import needs the name of the database to make", kUsage);
        options.database = setDatabase;
    }
    ChannelsConf const list = readChannelsConf(options.list);
    reportRejectedLines(list, options.list);
    (options.favourites ? writeFavourites : makeDatabase)(list, options);
    return kSuccess;
}

}  // namespace

void addImportCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("import", "Makes a channel database from a VDR channel list")
        .argument("CHANNELS.CONF", options->list, "the channel list")
        .optionalArgument("DATABASE", options->database,
                          "the database to make, or to write favourites to")
        .flag("--force", options->force, "replace the content of an existing database")
        .flag("--favourites", options->favourites,
              "write FAV1 to FAV4 from the groups of these names")
        .option("--list", options->favList, "write all channels to this FAV list")
        .needs("--list", "--favourites")
        .flag("-n,--dry-run", options->dryRun, "show what --favourites would change")
        .needs("--dry-run", "--favourites")
        .footer(
            "Lines that cannot be read are named and skipped. --favourites writes to an existing\n"
            "database, that of --db when none is named, and finds each channel there by its DVB\n"
            "triplet: original network, transport stream and service id.\n\n"
            "Examples:\n"
            "  channellist import channels.conf servicelist.db\n"
            "  channellist import --favourites favourites.conf servicelist.db --dry-run\n"
            "  channellist import --favourites sports.conf --list FAV3")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
