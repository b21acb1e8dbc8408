// channellist-page: serves the page to sort channels with, to this machine alone.
#include <malloc.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <thread>

#include "database/session.h"
#include "failure.h"
#include "page_server.h"
#include "text/display_text.h"

namespace {

struct Options {
    std::string database = channel_lists::kSetDatabase;
    std::optional<int> port;
    int keep = 15;
    bool readOnly = false;
    bool noBrowser = false;
};

// A file that sends the browser to the address: an argument of a program everybody could read.
class Entrance {
  public:
    explicit Entrance(std::string const& address) {
        char const* const folder = std::getenv("XDG_RUNTIME_DIR");
        path_ = std::string(folder == nullptr ? "/tmp" : folder) + "/channellist-XXXXXX.html";
        int const file = mkstemps(path_.data(), 5);
        std::string const text =
            "<!doctype html><meta http-equiv=refresh content='0;url=" + address +
            "'><title>Channels</title>";
        if (file < 0 || write(file, text.data(), text.size()) < 0)
            std::cerr << "channellist-page: no browser could be opened\n";
        if (file >= 0)
            close(file);
    }
    ~Entrance() { unlink(path_.c_str()); }
    Entrance(Entrance const&) = delete;
    Entrance& operator=(Entrance const&) = delete;

    void openBrowser() const {
        if (fork() != 0)
            return;
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        execlp("xdg-open", "xdg-open", path_.c_str(), nullptr);
        _exit(127);  // the address is printed anyway
    }

  private:
    std::string path_;
};

bool hasDesktop() {
    return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
}

// Until a signal, or until no page has asked for so long.
void waitForTheEnd(page::PageServer& server, sigset_t const& signals, int keepMinutes) {
    timespec const second = {1, 0};
    while (sigtimedwait(&signals, nullptr, &second) < 0)
        if (keepMinutes > 0 && server.idleTime() >= std::chrono::minutes(keepMinutes))
            break;
    server.stop();
}

int serve(Options const& options) {
    sigset_t signals;
    sigemptyset(&signals);
    for (int const signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGCHLD, SIG_IGN);
    mallopt(M_ARENA_MAX, 1);  // a thread's own arena grows page by page, which takes half the time
    mallopt(M_TOP_PAD, 16 << 20);
    page::ListServer lists(options.database, options.readOnly);
    page::PageServer server(lists, options.port);
    std::cout << "The page is at " << server.address() << "\n"
              << "Ctrl-C ends it" << std::endl;
    std::unique_ptr<Entrance> entrance;
    if (!options.noBrowser && hasDesktop()) {
        entrance = std::make_unique<Entrance>(server.address());
        entrance->openBrowser();
    }
    std::thread end([&] { waitForTheEnd(server, signals, options.keep); });
    server.run();
    end.join();
    return channel_lists::kSuccess;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Serves a page to sort channels with, to this machine alone", "channellist-page");
    app.add_option("--db", options.database, "the channel database");
    app.add_option("--port", options.port,
                   "the port to listen on; without it 8017, or another if that is taken")
        ->check(CLI::Range(0, 65535));
    app.add_option("--keep", options.keep, "minutes without a page until it ends; 0: never")
        ->check(CLI::Range(0, 1000000));
    app.add_flag("--read-only", options.readOnly, "let nothing be written");
    app.add_flag("--no-browser", options.noBrowser, "open no browser");
    app.set_version_flag("--version", "channellist-page " CHANNELLIST_VERSION);
    try {
        app.parse(argc, argv);
        return serve(options);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? channel_lists::kSuccess : channel_lists::kUsage;
    } catch (std::exception const& error) {
        std::cerr << "channellist-page: " << channel_lists::displayLines(error.what()) << "\n";
        return channel_lists::kFailure;
    }
}
