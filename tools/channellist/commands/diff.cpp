// channellist diff OLD [NEW]
#include <iostream>

#include "commands/commands.h"
#include "compare/database_difference.h"
#include "database/frozen_database.h"
#include "database/session.h"
#include "failure.h"
#include "output/differences.h"
#include "output/print_rows.h"
#include "output/text_table.h"
#include "text/json_text.h"

namespace tool {
namespace {

struct Options {
    std::string oldFile, newFile;
    bool json = false;
};

std::size_t countOf(Tally const& tally, char const* word) {
    auto const found = tally.find(word);
    return found == tally.end() ? 0 : found->second.size();
}

std::vector<Column> serviceColumns() {
    return {{"Service", Align::Left, kIsCut},
            {"Triplet", Align::Left, 2},
            {"Change"},
            {"Before", Align::Left, kWraps},
            {"After", Align::Left, kWraps}};
}

std::vector<Column> allColumns() {
    std::vector<Column> columns = differenceColumns();
    std::vector<Column> const services = serviceColumns();
    columns.insert(columns.end(), services.begin(), services.end());
    return columns;
}

void printServices(std::vector<ServiceChange> const& services) {
    if (services.empty())
        return;
    TextTable table(serviceColumns());
    for (ServiceChange const& each : services)
        table.add({each.name, each.triplet, each.what, each.before, each.after});
    table.show();
    std::cout << "\n";
}

void printCounts(DatabaseDifference const& difference) {
    std::vector<Column> columns = {{"List", Align::Left, kIsCut}};
    for (char const* word : kHappenings)
        columns.push_back({word, Align::Right});
    TextTable table(columns);
    auto const add = [&](std::string const& name, Tally const& tally) {
        std::vector<Cell> cells = {name};
        for (char const* word : kHappenings)
            cells.emplace_back(std::to_string(countOf(tally, word)));
        table.add(std::move(cells));
    };
    for (ListTally const& list : difference.lists)
        add(list.listName + (*list.list == '\0' ? "" : std::string(" (") + list.list + ")"),
            list.tally);
    add("all lists", difference.total);
    table.show();
}

void printTables(DatabaseDifference const& difference) {
    if (difference.isNone()) {
        std::cout << "No list and no service differs.\n";
        return;
    }
    if (!difference.changes.empty()) {
        printDifferences(difference.changes);
        std::cout << "\n";
    }
    printServices(difference.services);
    printCounts(difference);
}

Json countsJson(Tally const& tally) {
    Json counts;
    for (char const* word : kHappenings)
        counts[word] = countOf(tally, word);
    return counts;
}

void printObject(DatabaseDifference const& difference) {
    Json services = Json::array();
    for (ServiceChange const& each : difference.services) {
        services.push_back({{"change", each.what},
                            {"name", each.name},
                            {"triplet", each.triplet},
                            {"before", each.before},
                            {"after", each.after}});
    }
    Json lists = Json::array();
    for (ListTally const& list : difference.lists) {
        Json object = {{"list", list.listName}, {"change", list.list}};
        object.update(countsJson(list.tally));
        lists.push_back(std::move(object));
    }
    printJson({{"total", countsJson(difference.total)},
               {"lists", std::move(lists)},
               {"services", std::move(services)},
               {"entries", differencesJson(difference.changes)}});
}

ComparedContent contentOf(std::string const& file) {
    Session const session(file);
    FrozenDatabase const frozen;
    return readForComparison();
}

void requireComplete(ComparedContent const& content, std::string const& file) {
    if (!content.complete)
        throw Failure("not all services of " + file + " could be read; \"channellist check --db " +
                      file + "\" tells why");
}

int run(Options const& options, std::string const& newFile) {
    ComparedContent const old = contentOf(options.oldFile);
    ComparedContent const now = contentOf(newFile);
    (options.json ? printObject : printTables)(differenceOf(old, now));
    requireComplete(old, options.oldFile);
    requireComplete(now, newFile);
    return kSuccess;
}

}  // namespace

void addDiffCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("diff", "Compares two databases: services, and the entries of the lists")
        .argument("OLD", options->oldFile, "a database, for example a backup")
        .optionalArgument("NEW", options->newFile, "another one; that of --db when none is named")
        .json(options->json)
        .footer(
            "A service is the same in both by its triplet, by uuid and name, or by a name that it\n"
            "alone has, whatever its key. The last line counts each service once: what came to\n"
            "and went from all lists, or moved in any. " +
            narrowHelp(allColumns()) +
            "Examples:\n"
            "  channellist diff before-the-scan.db\n"
            "  channellist diff old.db new.db --json | jq .total")
        .action([options](std::string const& database) {
            std::string const& second = options->newFile;
            if (!second.empty() && database != kSetDatabase && database != second)
                throw Failure("two databases are compared, and --db names a third", kUsage);
            return run(*options, options->newFile.empty() ? database : options->newFile);
        });
}

}  // namespace tool
