// channellist check
#include <iostream>
#include <map>

#include "check/finding.h"
#include "commands/commands.h"
#include "database/session.h"
#include "failure.h"
#include "output/json_text.h"
#include "output/text_table.h"

namespace tool {
namespace {

struct Options {
    bool json = false;
    bool all = false;
};

void print(Findings const& findings, bool all) {
    constexpr int kShown = 20;  // of a rule
    std::map<std::string, int> counts;
    for (Finding const& finding : findings) {
        if (++counts[finding.rule] <= kShown || all) {
            std::cout << displayText(finding.row) << ": " << displayText(finding.what) << "\n    "
                      << displayText(finding.viewer) << "\n";
        }
    }
    for (auto const& [rule, count] : counts)
        if (count > kShown && !all)
            std::cout << "and " << count - kShown << " more of " << rule << ", which --all shows\n";
}

void printObjects(Findings const& findings) {
    Json list = Json::array();
    for (Finding const& finding : findings) {
        list.push_back({{"rule", finding.rule},
                        {"row", finding.row},
                        {"what", finding.what},
                        {"viewer", finding.viewer}});
    }
    printJson(list);
}

int run(std::string const& database, Options const& options) {
    Session const session(database);
    Findings findings;
    for (auto const check : {checkSchema, checkRows, checkConversion})
        check(findings);
    if (options.json) {
        printObjects(findings);
    } else {
        print(findings, options.all);
        std::cout << (findings.empty() ? "No findings."
                                       : std::to_string(findings.size()) +
                                             (findings.size() == 1 ? " finding." : " findings."))
                  << "\n";
    }
    return findings.empty() ? kSuccess : kFailure;
}

}  // namespace

void addCheckCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("check", "Looks for what is wrong in a database, and what a viewer sees of it")
        .json(options->json)
        .flag("--all", options->all, "print every finding, however many a rule has")
        .footer(
            "It writes nothing. The exit code is 1 when something is found.\n"
            "Examples:\n"
            "  channellist check\n"
            "  channellist check --db copy-of-servicelist.db --json | jq '.[].row'")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
