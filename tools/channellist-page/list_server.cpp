#include "list_server.h"

#include <channel-database/export.h>
#include <channellist-access/db_access.h>
#include <channellist-access/field_ids.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "database/frozen_database.h"
#include "database/list_naming.h"
#include "database/session.h"
#include "database/time_limit.h"
#include "edit/write_list.h"
#include "failure.h"
#include "library_messages/library_messages.h"
#include "lists/reserved_numbers.h"
#include "services/item_counts.h"
#include "services/service_reader.h"
#include "services/service_words.h"
#include "text/display_text.h"

namespace page {
namespace {

using namespace channel_lists;

// A change is meant to be seen, not to be proven: FNV-1a.
std::uint64_t hashOf(std::string const& text) {
    std::uint64_t hash = 14695981039346656037U;
    for (char const byte : text)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    return hash;
}

std::string versionOf(std::string const& stored) { return std::to_string(hashOf(stored)); }

// Of a service, whatever key a scan gives to it.
std::uint32_t printOf(Entry const& entry) {
    return entry.uuid.empty() ? 0 : static_cast<std::uint32_t>(hashOf(entry.uuid));
}

List listOf(std::string const& uuid) {
    for (List const& list : allLists())
        if (list.uuid == uuid && !uuid.empty())
            return list;
    throw Failure("the database has no such list any more");
}

// FAV1 to FAV4 first, then the list of all services.
std::vector<List> shownLists() {
    std::vector<List> lists;
    for (List& list : allLists())
        if (!list.uuid.empty())
            lists.push_back(std::move(list));
    auto const rankOf = [](List const& list) {
        return list.favIndex != 0 ? list.favIndex : isAllList(list) ? 5 : 6;
    };
    std::stable_sort(lists.begin(), lists.end(),
                     [&](List const& a, List const& b) { return rankOf(a) < rankOf(b); });
    return lists;
}

std::string placeOf(ResultRow const& service) {
    std::string delivery = deliveryOf(service);
    std::string const& satellite = service[SERVICE_FIELD_SATELLITE];
    if (delivery != "satellite" || satellite.empty())
        return delivery;
    std::int64_t const number =
        std::clamp<std::int64_t>(wholeNumber(satellite).value_or(0), 0, INT32_MAX);
    std::string const name = channel_database::satelliteName(static_cast<int>(number));
    return delivery + " " + (name.empty() ? satellite : name);
}

std::string quoted(std::string const& text) { return dumpJson(text, -1); }

// In the order of `columns` in the answer.
std::string rowOf(ResultRow const& service) {
    Entry const entry = entryOf(service);
    unsigned int const attributes = attributesOf(service);
    auto const flag = [](bool is) { return is ? "1" : "0"; };
    std::string text = "[" + std::to_string(entry.serviceId) + ",";
    text += entry.number ? numberText(entry) : "null";
    text += std::string(",") + flag(entry.deleted) + ",";
    text += quoted(displayText(entry.name)) + "," + quoted(kindOf(service)) + ",";
    text += quoted(placeOf(service)) + "," + flag((attributes & kHighDefinition) != 0) + ",";
    text += std::string(flag((attributes & kScrambled) != 0)) + ",";
    return text + std::to_string(printOf(entry)) + "]";
}

struct Content {
    std::string uuid, version;
    std::vector<ResultRow> services;
};

// Of FAV1 to FAV4, and of those of the other lists that are asked for.
std::vector<Content> readContents(std::vector<List> const& lists,
                                  std::vector<std::string> const& asked) {
    std::vector<Content> contents;
    for (List const& list : lists) {
        if (list.favIndex == 0 && std::find(asked.begin(), asked.end(), list.uuid) == asked.end())
            continue;
        Rows services = readServices(list.uuid);
        if (!services.complete)
            throw Failure(
                "not all services of a list could be read; \"channellist check\" tells why");
        contents.push_back(
            {list.uuid, versionOf(storedState(list.uuid)), std::move(services.rows)});
    }
    return contents;
}

std::string textOf(std::vector<Content> const& lists) {
    std::string text =
        R"({"columns":["id","number","hidden","name","kind","place","hd","scrambled","print"],"lists":[)";
    for (Content const& list : lists) {
        text += &list == lists.data() ? "" : ",";
        text += "{\"uuid\":" + quoted(list.uuid) + ",\"version\":" + quoted(list.version) +
                ",\"rows\":[";
        for (ResultRow const& service : list.services)
            text += (&service == list.services.data() ? "" : ",") + rowOf(service);
        text += "]}";
    }
    return text + "]}";
}

// One list as the page wants it. A FAV list may take in any service; in the others, nothing joins
// or leaves.
std::vector<Entry> wantedEntries(Json const& rows, SeenList const& seen,
                                 std::map<std::int64_t, Entry> const& services) {
    if (!rows.is_array())
        throw Malformed("entries are no array");
    std::vector<Entry> entries;
    for (Json const& row : rows) {
        auto const known = services.find(row.at(0).get<std::int64_t>());
        if (known == services.end())
            throw Failure("the database has a service of " + displayName(seen.list) +
                          " no more; nothing is written");
        Entry entry = known->second;
        if (row.at(3).get<std::uint32_t>() != printOf(entry))
            throw Failure("the services have other keys by now; nothing is written");
        entry.number =
            row.at(1).is_null() ? std::nullopt : std::optional(row.at(1).get<std::int64_t>());
        entry.deleted = row.at(2).get<int>() != 0;
        if (entry.number && (*entry.number < 1 || *entry.number > INT32_MAX) &&
            std::find(seen.entries.begin(), seen.entries.end(), entry) == seen.entries.end())
            throw Malformed("a channel number is out of range");
        entries.push_back(std::move(entry));
    }
    return entries;
}

// As the list stands now, with what the page wants of each entry.
std::vector<Entry> inStoredOrder(std::vector<Entry> wanted, SeenList const& seen) {
    std::multimap<unsigned int, Entry> byService;
    for (Entry& entry : wanted)
        byService.emplace(entry.serviceId, std::move(entry));
    std::vector<Entry> entries;
    for (Entry const& stored : seen.entries) {
        auto const found = byService.find(stored.serviceId);
        if (found == byService.end())
            throw Malformed("an entry of " + displayName(seen.list) + " is missing");
        entries.push_back(found->second);
        byService.erase(found);
    }
    if (!byService.empty())
        throw Malformed("nothing joins " + displayName(seen.list));
    return entries;
}

std::map<std::int64_t, Entry> knownServices(std::vector<SeenList> const& lists) {
    std::map<std::int64_t, Entry> services;
    for (Entry const& entry : readEntries(allServicesList().uuid).entries)
        services.emplace(entry.serviceId, entry);
    for (SeenList const& seen : lists)
        for (Entry const& entry : seen.entries)
            services.emplace(entry.serviceId, entry);
    return services;
}

struct Task {
    std::vector<ListEdit> edits;
    Json overtaken = Json::array();
};

Task taskOf(Json const& request) {
    Task task;
    FrozenDatabase const frozen;
    std::vector<SeenList> seen;
    for (Json const& each : request.at("lists")) {
        for (SeenList const& other : seen)
            if (each.at("uuid") == other.list.uuid)
                throw Malformed("a list is named twice");
        seen.push_back(seeList(listOf(each.at("uuid"))));
        if (versionOf(seen.back().stored) != each.at("version").get<std::string>())
            task.overtaken.push_back(seen.back().list.uuid);
    }
    if (!task.overtaken.empty())
        return task;
    auto const services = knownServices(seen);
    std::size_t at = 0;
    for (Json const& each : request.at("lists")) {
        SeenList const& list = seen[at++];
        std::vector<Entry> wanted = wantedEntries(each.at("entries"), list, services);
        if (list.list.favIndex == 0)
            wanted = inStoredOrder(std::move(wanted), list);
        task.edits.push_back({list, {std::move(wanted), false}});
    }
    return task;
}

std::string namesOf(Task const& task) {
    std::vector<std::string> names;
    for (ListEdit const& edit : task.edits)
        if (edit.wanted.entries != edit.seen.entries)
            names.push_back(displayName(edit.seen.list));
    return joined(names);
}

// What must be so before each piece of work.
void begin(std::string const& task) {
    forgetMessages();
    TimeLimit::restart(task);
}

}  // namespace

ListServer::ListServer(std::string database, bool isReadOnly)
    : database_(std::move(database)), isReadOnly_(isReadOnly) {
    setListener(this);
    Session const session(database_);  // throws for what is no channel database
}

ListServer::~ListServer() { setListener(nullptr); }

std::string ListServer::mark() const {
    std::string text;
    for (char const* ending : {"", "-wal"}) {
        struct stat file;
        if (stat((database_ + ending).c_str(), &file) == 0)
            text += std::to_string(file.st_ino) + "." + std::to_string(file.st_size) + "." +
                    std::to_string(file.st_mtim.tv_sec) + "." +
                    std::to_string(file.st_mtim.tv_nsec) + ";";
    }
    return text;
}

Json ListServer::overviewOf(std::vector<List> const& lists, std::string const& seenMark) const {
    auto const counts = itemCounts();
    Json told = Json::array();
    for (List const& list : lists) {
        auto const count = counts.find(list.pid);
        told.push_back({{"uuid", list.uuid},
                        {"name", isAllList(list) ? "All" : displayText(displayName(list))},
                        {"fav", list.favIndex},
                        {"all", isAllList(list)},
                        {"count", count == counts.end() ? 0 : count->second.entries},
                        {"reserved", reservedNumbers(list)}});
    }
    bool const isWritable = !isReadOnly_ && access(database_.c_str(), W_OK) == 0;
    return {
        {"database", database_}, {"mark", seenMark}, {"readOnly", !isWritable}, {"lists", told}};
}

std::string ListServer::lists(std::vector<std::string> const& asked) {
    Json overview;
    std::vector<Content> contents;
    {
        std::lock_guard const lock(mutex_);
        begin("reading the lists");
        Session const session(database_);
        std::string const seenMark = mark();
        FrozenDatabase const frozen;
        std::vector<List> const lists = shownLists();
        overview = overviewOf(lists, seenMark);
        contents = readContents(lists, asked);
    }
    // Others may read meanwhile.
    return "{\"overview\":" + dumpJson(overview, -1) + ",\"content\":" + textOf(contents) + "}";
}

Json ListServer::save(Json const& request) {
    std::lock_guard const lock(mutex_);
    if (isReadOnly_)
        throw Failure("this page was started with --read-only: nothing is written");
    begin("saving");
    notes_.clear();
    Session const session(database_, Access::Write);
    Task task = taskOf(request);
    std::string const names = namesOf(task);
    bool isWritten = false;
    if (task.overtaken.empty() && !names.empty()) {
        UndoStore undo(database_);
        Written const written = writeLists(task.edits, {undo, "page: " + names});
        isWritten = written.ending == Ending::Written;
        if (written.overtaken)
            task.overtaken.push_back(written.overtaken->uuid);
    }
    return {{"written", isWritten}, {"overtaken", task.overtaken}, {"notes", notes_}};
}

}  // namespace page
