#include "database/time_limit.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <new>
#include <set>
#include <vector>

#include "database/query.h"
#include "listener.h"

namespace channel_lists {
namespace {

constexpr int kInstructionsBetween = 20000;  // of SQLite's machine
constexpr double kSecondsUnseen = 1;
constexpr char kServiceQuery[] = "favoriteitemview";  // reads every table

int limitSeconds = 120;  // a set without indexes is slow, and its lists may be long
double began = 0;
bool reached = false;
std::string task;   // for a person who waits
std::string shown;  // the task on the terminal

void* outermost = nullptr;  // the statement that is timed; others run inside it
std::string work;           // what it does, "reading FavoriteList"
std::string interrupted;    // the work that last was
bool isHopeless = false;    // it works on what had no end before

std::map<std::string, std::string> views;  // by their names in lower case
std::map<std::string, bool> endless;       // work, and whether it was told
std::set<std::string> endlessSources;      // in lower case

double secondsOfWork() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

void showTask() {
    if (task == shown || secondsOfWork() < kSecondsUnseen)
        return;
    listener().progress("Looking at " + task);
    shown = task;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

std::vector<std::string> wordsOf(std::string const& sql) {
    constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
    std::vector<std::string> words;
    for (auto at = sql.find_first_of(kLetters); at != std::string::npos;) {
        auto const end = sql.find_first_not_of(kLetters, at);
        words.push_back(sql.substr(at, end - at));
        at = sql.find_first_of(kLetters, end);
    }
    return words;
}

std::string sourceOf(std::vector<std::string> const& words) {
    for (std::string const& word : words)
        if (auto const view = views.find(lower(word)); view != views.end())
            return view->second;
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        std::string const word = lower(words[i]);
        if (word == "from" || word == "into" || word == "update")
            return words[i + 1];
    }
    return "the database";
}

void beginStatement(void* statement, std::string const& sql) {
    std::vector<std::string> const words = wordsOf(sql);
    std::string const verb = words.empty() ? std::string() : lower(words[0]);
    bool const writes = verb == "insert" || verb == "update" || verb == "delete";
    std::string const source = sourceOf(words);
    outermost = statement;
    began = secondsOfWork();
    work = (writes ? "writing " : "reading ") + source;
    isHopeless =
        endless.count(work) != 0 || (lower(source) == kServiceQuery && !endlessSources.empty()) ||
        std::any_of(words.begin(), words.end(),
                    [](std::string const& word) { return endlessSources.count(lower(word)) != 0; });
}

// These two are called by SQLite: no exception leaves them. Without memory nothing is remembered.
int followStatement(unsigned event, void* /*unused*/, void* statement, void* text) {
    try {
        if (event == SQLITE_TRACE_PROFILE) {
            if (statement == outermost)
                outermost = nullptr;
        } else if (outermost == nullptr) {
            beginStatement(statement, static_cast<char const*>(text));
        }
    } catch (std::bad_alloc const&) {
        isHopeless = false;
    }
    return 0;
}

void rememberEndless() {
    endless.emplace(work, false);
    if (work.compare(0, 8, "reading ") == 0)
        endlessSources.insert(lower(work.substr(8)));
}

int interruptAtTheLimit(void* /*unused*/) {
    try {
        showTask();
        if (!isHopeless && secondsOfWork() - began > limitSeconds) {
            isHopeless = true;
            rememberEndless();
        }
        if (isHopeless)
            interrupted = work;
    } catch (std::bad_alloc const&) {  // the statement ends all the same
    }
    reached = reached || isHopeless;
    return isHopeless ? 1 : 0;
}

}  // namespace

void TimeLimit::watch(sqlite3* connection) {
    sqlite3_progress_handler(connection, kInstructionsBetween, interruptAtTheLimit, nullptr);
    sqlite3_trace_v2(connection, SQLITE_TRACE_STMT | SQLITE_TRACE_PROFILE, followStatement,
                     nullptr);
}

void TimeLimit::learnViews(sqlite3* connection) {
    Query names(connection, "SELECT name FROM sqlite_master WHERE type = 'view'");
    while (names.next())
        views.emplace(lower(names.text(0)), names.text(0));
}

void TimeLimit::set(int seconds) { limitSeconds = seconds; }

void TimeLimit::restart(std::string const& next) {
    reached = false;
    task = next;
    showTask();
}

void TimeLimit::finish() {
    reached = false;
    task.clear();
    listener().progress("");
    shown.clear();
}

bool TimeLimit::isReached() { return reached; }

std::string TimeLimit::sentenceOf(std::string const& ended) {
    return ended + " did not end within " + std::to_string(limitSeconds) +
           (limitSeconds == 1 ? " second" : " seconds");
}

std::string TimeLimit::sentence() { return sentenceOf(interrupted); }

std::optional<std::string> TimeLimit::newlyEndless() {
    for (auto& [each, told] : endless) {
        if (told)
            continue;
        told = true;
        return each;
    }
    return std::nullopt;
}

}  // namespace channel_lists
