// Several processes that read and edit one file at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>

#include "child_process.h"
#include "entry_points.h"
#include "quiet_platform.h"
#include "workshop.h"

namespace {

constexpr unsigned kProcesses = 6;
constexpr unsigned kRequests = 800;  // of each process

constexpr char kFav1[] = "list-of-favourites-1";
constexpr char kFav2[] = "list-of-favourites-2";

std::string ownList(unsigned process) { return "list-own-" + std::to_string(process % kOwnLists + 1); }

// The longest that a request may wait: each attempt costs a sleep of 100 ms and the busy timeout of
// one second, which service queries set. Beside the attempts named, a few statements run once each.
enum Kind { Read, Edit, kKinds };
constexpr double kAttemptSeconds = 1.1;
constexpr double kLongestWait[kKinds] = {(50 + 4) * kAttemptSeconds,
                                         (10 + 3 * 50 + 6) * kAttemptSeconds};

struct Tally {
    std::atomic<unsigned> requests{0};
    std::atomic<unsigned> done{0};
    std::atomic<unsigned> busy{0};
    std::atomic<unsigned> favEdits{0};  // of FAV1, done
    std::atomic<unsigned> longest[kKinds] = {};  // in milliseconds
};

// One of the processes. Every edit carries a stamp, unique among all: its first channel number.
class Client {
  public:
    Client(unsigned process, Tally& tally) : process_(process), tally_(tally), random_(process) {}
    void work();

  private:
    template <typename Request>
    auto timed(Kind kind, Request request);
    bool edits(std::vector<std::string> arguments);
    ResultSet services(std::string const& list);
    void editOwnList();
    void editFavList(const char* list);
    void renumberFav2();
    void readOwnList();
    void readFavList(const char* list);
    void readFolders();

    unsigned nextStamp() { return (++edits_ * kProcesses + process_) * 100; }

    unsigned process_;
    Tally& tally_;
    std::mt19937 random_;
    unsigned edits_ = 0;
    unsigned ownStamp_ = 1;
};

// A FAV list edit names the services that its stamp does not skip: each other ones.
std::vector<int> servicesOf(unsigned stamp) {
    std::vector<int> services;
    for (unsigned service = 1; service <= kServices; ++service)
        if ((service + stamp / 100) % 3 != 0)
            services.push_back(static_cast<int>(service));
    return services;
}

std::vector<int> allServices() {
    std::vector<int> services;
    for (int service = 1; service <= kServices; ++service)
        services.push_back(service);
    return services;
}

unsigned channelOf(ResultRow const& row) { return static_cast<unsigned>(std::stoul(row[0])); }

// The services of a list as the stamped edit wrote it: "number service", each.
std::string expected(unsigned stamp, std::vector<int> const& services) {
    std::string rows;
    for (int const service : services)
        rows += std::to_string(stamp++) + " " + std::to_string(service) + "\n";
    return rows;
}

std::string seen(ResultSet const& rows) {
    std::string text;
    for (auto const& row : rows)
        text += row->at(0) + " " + row->at(11) + "\n";
    return text;
}

template <typename Request>
auto Client::timed(Kind kind, Request request) {
    auto const start = std::chrono::steady_clock::now();
    auto answer = request();
    std::chrono::duration<double> const wait = std::chrono::steady_clock::now() - start;
    EXPECT_LT(wait.count(), kLongestWait[kind]);
    auto const milliseconds = static_cast<unsigned>(wait.count() * 1000);
    unsigned longest = tally_.longest[kind];
    while (milliseconds > longest &&
           !tally_.longest[kind].compare_exchange_weak(longest, milliseconds)) {
    }
    ++tally_.requests;
    return answer;
}

// False after a busy result, the only failure there may be.
bool Client::edits(std::vector<std::string> arguments) {
    int const code =
        timed(Edit, [&] { return dbaccess::onServiceListEdit(std::move(arguments)); });
    EXPECT_TRUE(code >= 0 || code == -2) << code;
    ++(code >= 0 ? tally_.done : tally_.busy);
    return code >= 0;
}

// Empty after a busy result alone.
ResultSet Client::services(std::string const& list) {
    unsigned const errors = platform::errors;
    ResultSet rows = timed(Read, [&] { return dbaccess::get_dbservices(list); });
    if (rows.empty()) {
        EXPECT_GT(platform::errors, errors) << "no services, and no word about it";
        ++tally_.busy;
    }
    return rows;
}

void Client::editOwnList() {
    unsigned const stamp = nextStamp();
    if (edits(edit(ownList(process_), allServices(), stamp)))
        ownStamp_ = stamp;
}

void Client::editFavList(const char* list) {
    unsigned const stamp = nextStamp();
    if (edits(edit(list, servicesOf(stamp), stamp)) && list == kFav1)
        ++tally_.favEdits;
}

void Client::renumberFav2() {
    edits(edit("list-of-all-services", {1}, 1, 0x02 | 0x08));
}

// Nobody else edits this list, so the last edit that was reported as done must be there.
void Client::readOwnList() {
    ResultSet const rows = services(ownList(process_));
    if (!rows.empty()) {
        EXPECT_EQ(seen(rows), expected(ownStamp_, allServices())) << "an edit was lost";
    }
}

void Client::readFavList(const char* list) {
    ResultSet const rows = services(list);
    if (rows.empty())
        return;
    unsigned const first = channelOf(*rows.front());
    if (first >= 100) {
        EXPECT_EQ(seen(rows), expected(first, servicesOf(first))) << "half of an edit";
    }
    EXPECT_EQ(channelOf(*rows.back()), first + rows.size() - 1) << "a half-renumbered list";
}

void Client::readFolders() {
    unsigned const errors = platform::errors;
    ResultSet const rows = timed(Read, dbaccess::select_Folders);
    EXPECT_TRUE(rows.size() == 5 + kOwnLists || platform::errors > errors) << rows.size();
    std::string const key = timed(Read, [] { return dbaccess::getBissKeyFromService("service-1"); });
    EXPECT_TRUE(key != "NULL" || platform::errors > errors);
}

void Client::work() {
    platform::sleepsTakeTime = true;
    services(kFav1);  // sets the busy timeout, so that no update tag is given up
    for (unsigned request = 0; request < kRequests && !testing::Test::HasFailure(); ++request) {
        switch (random_() % 8) {
            case 0:
                process_ < kOwnLists ? editOwnList() : renumberFav2();
                break;
            case 1:
                editFavList(kFav1);
                break;
            case 2:
                editFavList(kFav2);
                break;
            case 3:
                readFolders();
                break;
            case 4:
                readFavList(kFav1);
                break;
            case 5:
                readFavList(kFav2);
                break;
            default:
                process_ < kOwnLists ? readOwnList() : readFavList(kFav1);
        }
    }
    EXPECT_EQ(platform::strangeErrors, 0U) << "failures other than a locked database";
}

TEST(Sharing, LosesNoEditAndShowsNoneInHalves) {
    Workshop workshop(true);
    SharedValue<Tally> tally;
    std::vector<pid_t> children;
    for (unsigned process = 0; process < kProcesses; ++process)
        children.push_back(startChild([&] { Client(process, *tally).work(); }));
    for (pid_t const child : children)
        EXPECT_EQ(endOf(child), 0);
    EXPECT_EQ(workshop.rows("PRAGMA integrity_check"), "ok|\n");
    EXPECT_GE(std::stoul(workshop.rows("SELECT UpdateTag FROM FavoriteList WHERE Pid = 2")),
              tally->favEdits);
    EXPECT_GT(tally->done, 100U);
    std::printf("figure: %u requests of %u processes on one file\n", tally->requests.load(), kProcesses);
    std::printf("figure: %u edits done beside each other\n", tally->done.load());
    std::printf("figure: %u busy results\n", tally->busy.load());
    std::printf("longest: %u ms a read\n", tally->longest[Read].load());
    std::printf("longest: %u ms an edit\n", tally->longest[Edit].load());
}

}  // namespace
