// channellist check
#include <algorithm>
#include <iostream>

#include "check/finding.h"
#include "commands/commands.h"
#include "database/session.h"
#include "database/time_limit.h"
#include "failure.h"
#include "output/findings.h"
#include "text/json_text.h"

namespace tool {
namespace {

struct Options {
    bool json = false;
    bool all = false;
    std::string failOn = "odd";
    std::string seconds = "20";
};

Findings look(Session& session) {
    Findings findings;
    for (auto const check : {checkSchema, checkLists, checkServices, checkConversion})
        check(findings);
    examine("edit", findings, [&] {
        session.continueOnCopy();
        checkEdits(findings);
    });
    return findings;
}

int run(std::string const& database, Options const& options) {
    Severity const worst = severityOf(options.failOn);
    auto const seconds = wholeNumber(options.seconds);
    if (!seconds || *seconds < 1 || *seconds > 86400)
        throw Failure("--seconds needs a number from 1 to 86400", kUsage);
    TimeLimit::set(static_cast<int>(*seconds));
    Session session(database);
    Findings const findings = look(session);
    TimeLimit::finish();
    if (options.json) {
        printFindingsJson(findings);
    } else {
        printFindings(findings, options.all);
        std::cout << (findings.empty() ? "No findings."
                                       : std::to_string(findings.size()) +
                                             (findings.size() == 1 ? " finding." : " findings."))
                  << "\n";
    }
    bool const isBad = std::any_of(findings.begin(), findings.end(), [&](Finding const& finding) {
        return finding.severity <= worst;
    });
    return isBad ? kFailure : kSuccess;
}

}  // namespace

void addCheckCommand(CommandLine& line) {
    auto options = std::make_shared<Options>();
    line.add("check", "Looks for what is wrong in a database, and what a viewer sees of it")
        .json(options->json)
        .flag("--all", options->all, "print every finding, however many a rule has")
        .option("--fail-on", options->failOn,
                "exit with 1 from this severity on: edits, seen, tuning, slow, odd (any)")
        .option("--seconds", options->seconds, "of computing, for each rule (20)")
        .footer(
            "It writes nothing: edits are tried on a copy in memory. Findings that another one\n"
            "explains are counted under it. The exit code is 1 when something is found.\n"
            "Examples:\n"
            "  channellist check\n"
            "  channellist check --fail-on tuning\n"
            "  channellist check --db copy-of-servicelist.db --json | jq '.[].row'")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
