#include "kept/undo_store.h"

#include <channel-database/database_content.h>
#include <channellist-access/db_access.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <utility>

#include "database/query.h"
#include "failure.h"
#include "listener.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostCopies = 10;
constexpr std::int64_t kLastNumber = 1000000000;

std::string stateFolder() {
    char const* const state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/')  // others are to be ignored
        return state;
    char const* const home = std::getenv("HOME");
    return home == nullptr || home[0] != '/' ? std::string() : std::string(home) + "/.local/state";
}

std::string localTime() {
    std::time_t const now = std::time(nullptr);
    char text[32] = "";
    std::tm parts = {};
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", localtime_r(&now, &parts));
    return text;
}

bool isThere(std::string const& file) { return access(file.c_str(), F_OK) == 0; }

// The members of a stored item and their names in a copy.
constexpr std::pair<char const*, std::optional<std::int64_t> StoredItem::*> kMembers[] = {
    {"number", &StoredItem::number},
    {"hidden", &StoredItem::hidden},
    {"visible", &StoredItem::visible},
    {"selectable", &StoredItem::selectable},
    {"original", &StoredItem::original}};

Json toJson(std::vector<StoredItem> const& items) {
    Json all = Json::array();
    for (StoredItem const& item : items) {
        Json each = {{"key", item.service}, {"uuid", item.uuid}, {"list", item.originalList}};
        for (auto const& [name, member] : kMembers)
            each[name] = item.*member ? Json(*(item.*member)) : Json();
        all.push_back(std::move(each));
    }
    return all;
}

std::vector<StoredItem> itemsFrom(Json const& json) {
    std::vector<StoredItem> items;
    for (Json const& each : json) {
        StoredItem& item = items.emplace_back();
        item.service = each.at("key");
        item.uuid = each.value("uuid", "");
        item.originalList = each.value("list", "");
        for (auto const& [name, member] : kMembers)
            if (!each.at(name).is_null())
                item.*member = each.at(name).get<std::int64_t>();
    }
    return items;
}

Json toJson(ListEntries const& list) {
    Json entries = Json::array();
    for (Entry const& entry : list.entries) {
        entries.push_back({{"number", entry.number ? Json(*entry.number) : Json()},
                           {"key", entry.serviceId},
                           {"hidden", entry.deleted},
                           {"name", displayText(entry.name)},
                           {"service", displayText(entry.uuid)},
                           {"triplet", entry.triplet}});
    }
    return {{"uuid", list.uuid},
            {"name", list.listName},
            {"entries", std::move(entries)},
            {"items", toJson(list.items)}};
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
        entry.uuid = each.value("service", "");
        list.entries.push_back(std::move(entry));
    }
    list.items = itemsFrom(json.value("items", Json::array()));
    return list;
}

bool isChanged(ListEntries const& list, Snapshot const& now) {
    return std::none_of(
        now.begin(), now.end(),
        [&](ListEntries const& each) {
            return each.uuid == list.uuid && each.entries == list.entries;
        });
}

// Locks the open file unless another process has, or has given the name to something else since.
bool lockNamed(int descriptor, std::string const& file) {
    struct stat opened, named;
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 && fstat(descriptor, &opened) == 0 &&
           stat(file.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

KeptCopy copyFrom(int number, Json const& json) {
    KeptCopy copy;
    copy.number = number;
    copy.time = json.at("time");
    copy.command = json.at("command");
    copy.undoes = json.value("undoes", 0);
    copy.alongside = json.value("alongside", copy.alongside);
    copy.content = json.value("content", "");
    for (Json const& list : json.at("lists"))
        copy.lists.push_back(listFrom(list));
    for (Json const& list : json.value("after", Json::array()))
        copy.after.push_back(listFrom(list));
    return copy;
}

}  // namespace

bool isTakenBack(KeptCopy const& copy, std::vector<KeptCopy> const& copies) {
    return std::any_of(
        copies.begin(), copies.end(),
        [&](KeptCopy const& each) {
            return each.undoes == copy.number ||
                   std::find(each.alongside.begin(), each.alongside.end(), copy.number) !=
                       each.alongside.end();
        });
}

UndoStore::UndoStore(std::string const& database, bool isOn) : database_(database), isOn_(isOn) {
    std::string const state = stateFolder();
    std::error_code failed;
    fs::path real = fs::absolute(database, failed);
    if (!failed)
        real = fs::weakly_canonical(real, failed);  // also of a database that is gone
    if (isOn && !state.empty() && !failed)
        folder_ = state + "/channellist" + real.string();
}

UndoStore::~UndoStore() { discard(); }

void UndoStore::discard() {
    if (last_.number != 0)
        remove(last_.number);
    last_.number = 0;
    close(std::exchange(claimed_, -1));
}

void UndoStore::confirm(std::string const& content) {
    last_.content = content;
    rewriteAndConfirm();
}

// N.part stays whole until another file is: the process may die at any moment.
bool UndoStore::tryToWriteAnew() const {
    std::string const file = fileOf(last_.number, ".new");
    int const descriptor = open(file.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
    bool isWritten = true;
    try {
        write(last_, descriptor, ".new");
    } catch (Failure const& failure) {
        listener().note(failure.what());
        unlink(file.c_str());
        isWritten = false;
    }
    close(descriptor);
    return isWritten;
}

int UndoStore::firstFree() const {
    std::vector<int> const kept = numbers(".json");
    std::string text;
    std::ifstream(folder_ + "/last") >> text;
    auto const last = wholeNumber(text);
    bool const isForeign = !last || *last < 0 || *last >= kLastNumber;
    return std::max(kept.empty() ? 0 : kept.back(), isForeign ? 0 : static_cast<int>(*last)) + 1;
}

void UndoStore::giveName(int number, std::string const& whole) const {
    try {
        int const last = firstFree() - 1;
        std::ofstream(folder_ + "/last") << std::max(number, last) << "\n";
    } catch (Failure const&) {  // the copy is worth more than its number
    }
    if (rename(whole.c_str(), fileOf(number, ".json").c_str()) != 0)
        listener().note("\"undo\" will not know of this: " + std::string(std::strerror(errno)));
}

void UndoStore::rewriteAndConfirm() {
    if (last_.number == 0)
        return;
    bool const isAnew = tryToWriteAnew();  // else what it was to be has to do
    std::string const part = fileOf(last_.number, ".part");
    giveName(last_.number, isAnew ? fileOf(last_.number, ".new") : part);
    if (isAnew && isThere(fileOf(last_.number, ".json")))
        unlink(part.c_str());
    last_.number = 0;
    close(std::exchange(claimed_, -1));
    try {
        removeOld(last_.undoes != 0);
    } catch (Failure const&) {  // they are in nobody's way
    }
}

std::string UndoStore::fileOf(int number, char const* ending) const {
    return folder_ + "/" + std::to_string(number) + ending;
}

std::vector<int> UndoStore::numbers(char const* ending) const {
    std::vector<int> found;
    std::error_code failed;
    for (fs::directory_iterator file(folder_, failed), end; !failed && file != end;
         file.increment(failed)) {
        fs::path const& path = file->path();
        auto const number = wholeNumber(path.stem().string());
        if (number && *number <= kLastNumber && path.extension() == ending)
            found.push_back(static_cast<int>(*number));
    }
    if (failed && failed != std::errc::no_such_file_or_directory)
        throw Failure("cannot read " + folder_ + ": " + failed.message());
    std::sort(found.begin(), found.end());
    return found;
}

void UndoStore::remove(int number) const {
    if (folder_.empty())
        return;
    for (char const* ending : {".json", ".db", ".part", ".new"})
        unlink(fileOf(number, ending).c_str());
}

// In this order: a copy changes its ending once its write is done.
bool UndoStore::isTakenBack(int number) const {
    for (char const* ending : {".part", ".json"})
        for (int const other : numbers(ending))
            if (read(other, ending).undoes == number)
                return true;
    return false;
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
bool UndoStore::claim(int number) {
    std::string const file = fileOf(number, ".part");
    claimed_ = open(file.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
    if (claimed_ >= 0 && lockNamed(claimed_, file)) {
        if (!isThere(fileOf(number, ".json")))
            return true;
        unlink(file.c_str());  // another has finished since the numbers were read
    }
    if (claimed_ >= 0) {  // or whoever settles was faster
        close(std::exchange(claimed_, -1));
        return false;
    }
    if (errno == EEXIST)
        return false;
    throw Failure("cannot write to " + folder_ + ": " + std::strerror(errno));
}

void UndoStore::write(KeptCopy const& copy, int descriptor, char const* ending) const {
    Json lists = Json::array();
    for (ListEntries const& list : copy.lists)
        lists.push_back(toJson(list));
    Json json = {{"time", copy.time}, {"command", copy.command}, {"lists", lists}};
    if (copy.undoes != 0)
        json["undoes"] = copy.undoes;
    if (!copy.alongside.empty())
        json["alongside"] = copy.alongside;
    if (!copy.content.empty())
        json["content"] = copy.content;
    for (ListEntries const& list : copy.after)
        json["after"].push_back(toJson(list));
    std::string const text = json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
    auto const size = static_cast<ssize_t>(text.size());
    ssize_t done = 0;
    for (ssize_t part = 1; part > 0 && done < size; done += part)
        part = pwrite(descriptor, text.data() + done, static_cast<std::size_t>(size - done), done);
    if (done != size || fsync(descriptor) != 0)
        throw Failure("cannot write " + fileOf(copy.number, ending) + ": " + std::strerror(errno));
}

KeptCopy UndoStore::read(int number, char const* ending) const {
    KeptCopy copy;
    try {
        std::ifstream in(fileOf(number, ending));
        copy = copyFrom(number, Json::parse(in));
    } catch (std::exception const&) {  // of a folder, too
        copy = KeptCopy();
        copy.number = number;
        copy.isReadable = false;
    }
    if (copy.isReadable && copy.lists.empty())
        copy.file = fileOf(number, ".db");
    return copy;
}

// None goes without the others: a copy, that of its taking back, and those that went with it.
void UndoStore::removeOld(bool isUndo) const {
    auto const removeAll = [&](KeptCopy const& copy) {
        remove(copy.number);
        for (int const other : copy.alongside)
            remove(other);
    };
    std::vector<KeptCopy> const all = copies();
    std::size_t count = 0;
    for (auto copy = all.rbegin(); copy != all.rend(); ++copy) {
        if ((copy->undoes != 0) != isUndo || ++count <= kMostCopies)
            continue;
        removeAll(*copy);
        for (KeptCopy const& other : all)
            if (other.undoes == copy->number || other.number == copy->undoes)
                removeAll(other);
    }
}

void UndoStore::keep(KeptCopy& copy) {
    copy.number = firstFree();
    copy.time = localTime();
    makeFolder();
    while (!claim(copy.number))
        ++copy.number;
    try {
        if (copy.lists.empty())
            channel_database::copyToNewFile(database_, fileOf(copy.number, ".db"));
        write(copy, claimed_, ".part");
    } catch (...) {
        remove(copy.number);
        close(std::exchange(claimed_, -1));
        throw;
    }
}

void UndoStore::keepIn(KeptCopy copy) {
    if (folder_.empty())
        throw Failure("neither XDG_STATE_HOME nor HOME names a folder for it");
    keep(copy);
    last_ = std::move(copy);
}

void UndoStore::keepLists(std::string const& command, Snapshot const& lists, Snapshot const& after,
                          int undoes) {
    if (!isOn_)
        return;
    KeptCopy copy;
    copy.command = command;
    copy.lists = lists;
    copy.after = after;
    copy.undoes = undoes;
    try {
        keepIn(std::move(copy));
    } catch (std::exception const& error) {
        listener().note(std::string("\"undo\" will not know of this: ") + error.what());
    }
}

void UndoStore::keepDatabase(std::string const& command, std::string const& content, int undoes,
                             std::vector<int> const& alongside) {
    std::error_code failed;
    if (!isOn_ || (fs::file_size(database_, failed) == 0 && !failed))
        return;
    discard();  // what was kept before somebody else wrote
    KeptCopy copy;
    copy.command = command;
    copy.content = content;
    copy.undoes = undoes;
    copy.alongside = alongside;
    try {
        keepIn(std::move(copy));
    } catch (std::exception const& error) {
        throw Failure(std::string("no copy could be kept, and nothing is written") +
                      (undoes == 0 ? " (--no-undo does without): " : ": ") + error.what());
    }
}

void UndoStore::correct(Snapshot const& lists) { last_.lists = lists; }

void UndoStore::keepOnlyChanged(Snapshot const& now) {
    if (last_.number == 0)
        return;
    Snapshot changed;
    std::copy_if(
        last_.lists.begin(), last_.lists.end(), std::back_inserter(changed),
        [&](ListEntries const& list) { return isChanged(list, now); });
    bool const reachesAll = std::any_of(changed.begin(), changed.end(),
                                        [](ListEntries const& list) { return !list.isFav; });
    if (changed.empty())
        return;  // and the copy goes with this object
    if (!reachesAll)
        last_.lists = std::move(changed);
    last_.after.clear();
    for (ListEntries const& list : last_.lists)
        std::copy_if(now.begin(), now.end(), std::back_inserter(last_.after),
                     [&](ListEntries const& each) { return each.uuid == list.uuid; });
    rewriteAndConfirm();
}

std::vector<KeptCopy> UndoStore::copies() const {
    std::vector<KeptCopy> found;
    for (int const number : numbers(".json"))
        found.push_back(read(number, ".json"));
    return found;
}

std::vector<int> UndoStore::settle(
    std::function<std::optional<bool>(KeptCopy const&)> const& wasWritten) const {
    std::vector<int> untold;
    for (int const number : numbers(".part")) {
        std::string const file = fileOf(number, ".part");
        int const claimed = open(file.c_str(), O_RDWR | O_CLOEXEC);
        if (claimed >= 0 && lockNamed(claimed, file)) {
            KeptCopy const copy = read(number, ".part");
            // Of one that cannot be read the write had not begun.
            std::optional<bool> const isWritten = copy.isReadable ? wasWritten(copy) : false;
            if (isThere(fileOf(number, ".json")))  // it only had to go
                unlink(file.c_str());
            else if (isWritten == false)
                remove(number);
            else if (isWritten)
                giveName(number, file);
            else
                untold.push_back(number);
            unlink(fileOf(number, ".new").c_str());
        }
        close(claimed);
    }
    return untold;
}

}  // namespace channel_lists
