// The page's files and requests over HTTP, to this machine alone.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "gate.h"
#include "list_server.h"

namespace page {

class PatientServer;

class PageServer {
  public:
    // Takes `port` (0: any free one), or throws channel_lists::Failure. Without one it takes the
    // page's own, or any where that is taken.
    PageServer(ListServer& lists, std::optional<int> port);
    ~PageServer();
    PageServer(PageServer const&) = delete;
    PageServer& operator=(PageServer const&) = delete;

    std::string address() const { return gate_->address(); }
    // Until `stop`; answers that are on their way are given first.
    void run();
    void stop();
    // How long no page has asked anything.
    std::chrono::seconds idleTime() const;

  private:
    void addFiles();
    void addRequests();

    ListServer& lists_;
    std::unique_ptr<PatientServer> server_;
    std::unique_ptr<Gate> gate_;
    std::atomic<std::chrono::steady_clock::time_point> lastAsked_;
};

}  // namespace page
