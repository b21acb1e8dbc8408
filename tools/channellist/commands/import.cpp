// channellist import CHANNELS.CONF DATABASE
#include <channel-database/database_file.h>
#include <unistd.h>

#include <iostream>

#include "commands/command.h"

namespace tool {
namespace {

using namespace channel_database;

struct Options {
    std::string list;
    std::string database;
    bool force = false;
};

// Shows how far a long import is, on a terminal only.
class Progress {
  public:
    ~Progress() {
        if (shown_) {
            std::cerr << "\r\x1b[K" << std::flush;
        }
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

void reportRejectedLines(const ChannelsConf& list, const std::string& path) {
    for (const RejectedLine& rejected : list.rejected) {
        std::cerr << path << ":" << rejected.line << ": skipped: " << rejected.reason << "\n";
    }
}

int run(const Options& options) {
    const ChannelsConf list = readChannelsConf(options.list);
    reportRejectedLines(list, options.list);
    {
        Progress progress;
        makeDatabaseFile(list, options.database, options.force, std::ref(progress));
    }
    std::cout << options.database << ": " << list.channels.size() << " channels, "
              << list.groups.size() << " groups, " << list.rejected.size() << " lines skipped\n";
    return kSuccess;
}

}  // namespace

void addImportCommand(CLI::App& app, CommandLine& line) {
    CLI::App* command =
        app.add_subcommand("import", "Makes a channel database from a VDR channel list");
    auto options = std::make_shared<Options>();
    command->add_option("CHANNELS.CONF", options->list, "the channel list")->required();
    command->add_option("DATABASE", options->database, "the database to make")->required();
    command->add_flag("--force", options->force, "replace an existing database");
    command->footer(
        "Examples:\n"
        "  channellist import channels.conf servicelist.db");
    command->callback([&line, options] { line.run = [options] { return run(*options); }; });
}

}  // namespace tool
