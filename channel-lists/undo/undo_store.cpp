#include "undo/undo_store.h"

#include <channel-database/database_content.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "failure.h"
#include "listener.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostCopies = 10;

std::string stateFolder() {
    char const* const state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/')  // others are to be ignored
        return state;
    char const* const home = std::getenv("HOME");
    return home == nullptr ? std::string() : std::string(home) + "/.local/state";
}

std::string localTime() {
    std::time_t const now = std::time(nullptr);
    char text[32] = "";
    std::tm parts = {};
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", localtime_r(&now, &parts));
    return text;
}

Json toJson(ListEntries const& list) {
    Json entries = Json::array();
    for (Entry const& entry : list.entries) {
        entries.push_back({{"number", entry.number ? Json(*entry.number) : Json()},
                           {"key", entry.serviceId},
                           {"hidden", entry.deleted},
                           {"name", displayText(entry.name)},
                           {"triplet", entry.triplet}});
    }
    return {{"uuid", list.uuid}, {"name", list.listName}, {"entries", std::move(entries)}};
}

ListEntries listFrom(Json const& json) {
    ListEntries list;
    list.uuid = json.at("uuid");
    list.listName = json.at("name");
    for (Json const& each : json.at("entries")) {
        Entry entry;
        if (!each.at("number").is_null())
            entry.number = each.at("number").get<std::int64_t>();
        entry.serviceId = each.at("key");
        entry.deleted = each.at("hidden");
        entry.name = each.at("name");
        entry.triplet = each.at("triplet");
        list.entries.push_back(std::move(entry));
    }
    return list;
}

bool isChanged(ListEntries const& list, Snapshot const& now) {
    return std::none_of(
        now.begin(), now.end(),
        [&](ListEntries const& each) {
            return each.uuid == list.uuid && each.entries == list.entries;
        });
}

KeptCopy copyFrom(int number, Json const& json) {
    KeptCopy copy;
    copy.number = number;
    copy.time = json.at("time");
    copy.command = json.at("command");
    for (Json const& list : json.at("lists"))
        copy.lists.push_back(listFrom(list));
    return copy;
}

}  // namespace

UndoStore::UndoStore(std::string const& database, bool isOn) : database_(database), isOn_(isOn) {
    std::string const state = stateFolder();
    std::error_code failed;
    fs::path const real = fs::canonical(database, failed);
    if (isOn && !state.empty() && !failed)
        folder_ = state + "/channellist" + real.string();
}

UndoStore::~UndoStore() { discard(); }

void UndoStore::discard() {
    if (last_.number != 0)
        remove(last_.number);
    last_.number = 0;
}

std::string UndoStore::fileOf(int number, char const* ending) const {
    return folder_ + "/" + std::to_string(number) + ending;
}

std::vector<int> UndoStore::numbers() const {
    std::vector<int> found;
    std::error_code failed;
    for (fs::directory_iterator file(folder_, failed), end; !failed && file != end;
         file.increment(failed)) {
        fs::path const& path = file->path();
        auto const number = wholeNumber(path.stem().string());
        if (number && path.extension() == ".json")
            found.push_back(static_cast<int>(*number));
    }
    if (failed && failed != std::errc::no_such_file_or_directory)
        throw Failure("cannot read " + folder_ + ": " + failed.message());
    std::sort(found.begin(), found.end());
    return found;
}

void UndoStore::remove(int number) const {
    for (char const* ending : {".json", ".db", ".part"})
        unlink(fileOf(number, ending).c_str());
}

void UndoStore::makeFolder() const {
    std::error_code failed;
    fs::create_directories(folder_, failed);
    if (!failed)
        fs::permissions(folder_, fs::perms::owner_all, failed);
    if (failed)
        throw Failure("cannot make " + folder_ + ": " + failed.message());
}

// Another command may be at the same; one that died has left what it had claimed.
bool UndoStore::claim(int number) const {
    int const file =
        open(fileOf(number, ".part").c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (file >= 0)
        return close(file) == 0;
    if (errno == EEXIST)
        return false;
    throw Failure("cannot write to " + folder_ + ": " + std::strerror(errno));
}

// Under its name only when it is whole.
void UndoStore::write(KeptCopy const& copy) const {
    Json lists = Json::array();
    for (ListEntries const& list : copy.lists)
        lists.push_back(toJson(list));
    Json const json = {{"time", copy.time}, {"command", copy.command}, {"lists", lists}};
    std::string const file = fileOf(copy.number, ".json");
    std::string const unfinished = fileOf(copy.number, ".part");
    std::ofstream out(unfinished);
    out << json.dump(1, ' ', false, Json::error_handler_t::replace) << "\n";
    if (!out.flush() || rename(unfinished.c_str(), file.c_str()) != 0) {
        std::string const reason = std::strerror(errno);
        unlink(unfinished.c_str());
        throw Failure("cannot write " + file + ": " + reason);
    }
}

void UndoStore::keep(KeptCopy& copy) {
    std::vector<int> const kept = numbers();
    copy.number = kept.empty() ? 1 : kept.back() + 1;
    copy.time = localTime();
    makeFolder();
    while (!claim(copy.number))
        ++copy.number;
    try {
        if (copy.lists.empty())
            channel_database::copyToNewFile(database_, fileOf(copy.number, ".db"));
        write(copy);
    } catch (...) {
        remove(copy.number);
        throw;
    }
    for (std::size_t i = 0; i + kMostCopies <= kept.size(); ++i)
        remove(kept[i]);
}

void UndoStore::keepIn(std::string const& command, Snapshot const& lists) {
    if (folder_.empty())
        throw Failure("neither XDG_STATE_HOME nor HOME names a folder for it");
    KeptCopy copy;
    copy.command = command;
    copy.lists = lists;
    keep(copy);
    last_ = std::move(copy);
}

void UndoStore::keepLists(std::string const& command, Snapshot const& lists) {
    if (!isOn_)
        return;
    try {
        keepIn(command, lists);
    } catch (std::exception const& error) {
        listener().note(std::string("\"undo\" will not know of this: ") + error.what());
    }
}

void UndoStore::keepDatabase(std::string const& command) {
    std::error_code failed;
    if (!isOn_ || (fs::file_size(database_, failed) == 0 && !failed))
        return;
    try {
        keepIn(command, {});
    } catch (std::exception const& error) {
        throw Failure(std::string("no copy could be kept, and nothing is written (--no-undo does"
                                  " without): ") +
                      error.what());
    }
}

void UndoStore::keepOnlyChanged(Snapshot const& now) {
    if (last_.number == 0)
        return;
    Snapshot changed;
    std::copy_if(
        last_.lists.begin(), last_.lists.end(), std::back_inserter(changed),
        [&](ListEntries const& list) { return isChanged(list, now); });
    bool const reachesAll = std::any_of(changed.begin(), changed.end(),
                                        [](ListEntries const& list) { return !list.isFav; });
    if (reachesAll)
        changed = last_.lists;
    last_.lists = std::move(changed);
    if (last_.lists.empty())
        return;  // and the copy goes with this object
    try {
        write(last_);
    } catch (Failure const& failure) {  // the copy stays as it was: it has more than it needs
        listener().note(failure.what());
    }
    confirm();
}

std::vector<KeptCopy> UndoStore::copies() const {
    std::vector<KeptCopy> found;
    for (int const number : numbers()) {
        std::ifstream in(fileOf(number, ".json"));
        Json const json = Json::parse(in, nullptr, false);
        try {
            found.push_back(copyFrom(number, json));
        } catch (Json::exception const&) {
            listener().note(fileOf(number, ".json") + " is no kept copy");
            continue;
        }
        if (found.back().lists.empty())
            found.back().file = fileOf(number, ".db");
    }
    return found;
}

}  // namespace channel_lists
