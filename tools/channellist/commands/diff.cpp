// channellist diff OLD [NEW]
#include <channellist-access/field_ids.h>

#include <array>
#include <iostream>
#include <map>
#include <set>

#include "commands/commands.h"
#include "database/session.h"
#include "edit/difference.h"
#include "failure.h"
#include "output/json_text.h"
#include "output/text_table.h"
#include "services/database_content.h"
#include "services/service_words.h"

namespace tool {
namespace {

struct Place {
    std::string uuid, triplet, name, transponder;
};

struct Content {
    Snapshot lists;
    std::map<unsigned int, Place> services;  // by key
};

std::string transponderOf(ResultRow const& row) {
    std::string text = deliveryOf(row);
    for (ServiceField const field : {SERVICE_FIELD_SATELLITE, SERVICE_FIELD_FREQUENCY,
                                     SERVICE_FIELD_POLARIZATION, SERVICE_FIELD_SYMBOL_RATE})
        if (!row[field].empty())
            text += " " + row[field] + (field == SERVICE_FIELD_FREQUENCY ? " kHz" : "");
    return text;
}

Content contentOf(std::string const& file) {
    Session const session(file);
    Content content;
    for (ListContentRows const& each : readAllLists()) {
        ListEntries list{each.list.uuid, displayName(each.list), {}, each.list.favIndex != 0};
        for (ResultRow const& row : each.rows) {
            Entry const entry = entryOf(row);
            content.services[entry.serviceId] = {entry.uuid, entry.triplet, entry.name,
                                                 transponderOf(row)};
            list.entries.push_back(entry);
        }
        content.lists.push_back(std::move(list));
    }
    return content;
}

// The old keys of the new services: by uuid, else by the triplet, else by the name that one alone
// has.
class OldKeys {
  public:
    OldKeys(Content const& old, Content const& now) {
        for (auto const& [key, place] : old.services)
            free_.insert(key);
        unsigned int fresh = 0;
        for (auto const text : {&Place::uuid, &Place::triplet, &Place::name})
            match(old, now, text);
        for (auto const& [key, place] : old.services)
            fresh = std::max(fresh, key);
        for (auto const& [key, place] : now.services)
            if (keys_.count(key) == 0)
                keys_[key] = ++fresh;
    }
    unsigned int of(unsigned int key) const { return keys_.at(key); }

  private:
    void match(Content const& old, Content const& now, std::string Place::*text) {
        std::multimap<std::string, unsigned int> olds, news;
        for (unsigned int const key : free_)
            olds.emplace(old.services.at(key).*text, key);
        for (auto const& [key, place] : now.services)
            if (keys_.count(key) == 0)
                news.emplace(place.*text, key);
        for (auto const& [word, key] : news) {
            if (word.empty() || olds.count(word) != 1 || news.count(word) != 1)
                continue;
            keys_[key] = olds.find(word)->second;
            free_.erase(keys_[key]);
        }
    }

    std::map<unsigned int, unsigned int> keys_;
    std::set<unsigned int> free_;  // old ones that are no new service's yet
};

// The new lists beside the old ones of their uuid, or else their name.
std::vector<Change> listChanges(Content const& old, Content now, OldKeys const& keys) {
    for (ListEntries& list : now.lists)
        for (Entry& entry : list.entries)
            entry.serviceId = keys.of(entry.serviceId);
    Snapshot before, after;
    std::set<std::size_t> matched;
    for (ListEntries const& list : old.lists) {
        before.push_back(list);
        after.push_back({list.uuid, list.listName, {}, list.isFav});
        for (std::size_t i = 0; i < now.lists.size(); ++i) {
            bool const isSame =
                now.lists[i].uuid == list.uuid || now.lists[i].listName == list.listName;
            if (isSame && matched.insert(i).second) {
                after.back().entries = now.lists[i].entries;
                break;
            }
        }
    }
    for (std::size_t i = 0; i < now.lists.size(); ++i) {
        if (matched.count(i) != 0)
            continue;
        before.push_back({now.lists[i].uuid, now.lists[i].listName, {}, now.lists[i].isFav});
        after.push_back(now.lists[i]);
    }
    return differences(before, after);
}

struct Totals {
    int came = 0, went = 0, renamed = 0, retuned = 0;
    std::vector<std::array<std::string, 3>> transponders;  // name, before, after
};

Totals totalsOf(Content const& old, Content const& now, OldKeys const& keys) {
    Totals totals;
    std::set<unsigned int> kept;
    for (auto const& [key, place] : now.services) {
        auto const before = old.services.find(keys.of(key));
        if (before == old.services.end()) {
            ++totals.came;
            continue;
        }
        kept.insert(before->first);
        totals.renamed += place.name != before->second.name;
        if (place.transponder != before->second.transponder) {
            ++totals.retuned;
            totals.transponders.push_back(
                {place.name, before->second.transponder, place.transponder});
        }
    }
    totals.went = static_cast<int>(old.services.size() - kept.size());
    return totals;
}

void print(Totals const& totals, std::vector<Change> const& changes) {
    if (!changes.empty())
        printDifferences(changes);
    if (!totals.transponders.empty()) {
        TextTable table({{"Name"}, {"Transponder before"}, {"After"}});
        for (auto const& [name, before, after] : totals.transponders)
            table.add({name, before, after});
        std::cout << "\n";
        table.print(std::cout);
        std::cout << "\n";
    }
    std::cout << totals.came << " services came, " << totals.went << " went, " << totals.renamed
              << " renamed, " << totals.retuned << " on another transponder; " << changes.size()
              << " changes in lists\n";
}

void printObjects(Totals const& totals, std::vector<Change> const& changes) {
    Json transponders = Json::array();
    for (auto const& [name, before, after] : totals.transponders)
        transponders.push_back({{"name", name}, {"before", before}, {"after", after}});
    printJson({{"came", totals.came},
               {"went", totals.went},
               {"renamed", totals.renamed},
               {"retuned", totals.retuned},
               {"transponders", transponders},
               {"lists", differencesJson(changes)}});
}

int run(std::string const& oldFile, std::string const& newFile, bool json) {
    Content const old = contentOf(oldFile);
    Content const now = contentOf(newFile);
    OldKeys const keys(old, now);
    (json ? printObjects : print)(totalsOf(old, now, keys), listChanges(old, now, keys));
    return kSuccess;
}

}  // namespace

void addDiffCommand(CommandLine& line) {
    auto files = std::make_shared<std::pair<std::string, std::string>>();
    auto json = std::make_shared<bool>();
    line.add("diff", "Compares two databases: services and the lists' entries")
        .argument("OLD", files->first, "a database, for example a backup")
        .optionalArgument("NEW", files->second, "another one; that of --db when none is named")
        .json(*json)
        .footer(
            "A service is the same in both by its uuid, else by its triplet, else by a name that\n"
            "it alone has.\n"
            "Examples:\n"
            "  channellist diff before-the-scan.db\n"
            "  channellist diff old.db new.db --json | jq .came")
        .action([files, json](std::string const& database) {
            std::string const& second = files->second;
            if (!second.empty() && database != kSetDatabase && database != second)
                throw Failure("two databases are compared, and --db names a third", kUsage);
            return run(files->first, files->second.empty() ? database : files->second, *json);
        });
}

}  // namespace tool
