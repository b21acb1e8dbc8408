// channellist check
#include <algorithm>
#include <iostream>

#include "check/damage.h"
#include "check/examination.h"
#include "check/finding.h"
#include "commands/commands.h"
#include "database/session.h"
#include "database/time_limit.h"
#include "edit/commit_guard.h"
#include "failure.h"
#include "kept/undo_store.h"
#include "output/findings.h"
#include "output/written.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

struct Options {
    bool json = false;
    bool all = false;
    bool mend = false;
    std::string failOn = "odd";
    std::string seconds = "20";
};

Findings look(Session const& session) {
    Findings findings;
    if (!session.ottProblem().empty()) {
        findings.push_back({"ott-file", Severity::Odd, "OTT database", session.ottProblem(),
                            "no number is kept free for OTT channels",
                            decision("its owner has to make it readable, or anew")});
    }
    for (Finding const& finding : examineDatabase())
        findings.push_back(finding);
    return findings;
}

void print(Findings const& findings, Options const& options) {
    if (options.json) {
        printFindingsJson(findings);
        return;
    }
    printFindings(findings, options.all);
    std::cout << countOf(findings) << "\n";
}

int codeFor(Findings const& findings, Options const& options) {
    Severity const worst = severityOf(options.failOn);
    bool const isBad = std::any_of(findings.begin(), findings.end(), [&](Finding const& finding) {
        return finding.severity <= worst;
    });
    return isBad ? kFailure : kSuccess;
}

// What is certain of the ways out. The findings have been shown.
void mendThem(std::string const& database, Findings const& findings, CommitGuard const& guard) {
    std::vector<std::string> const statements = certainStatements(findings);
    if (statements.empty()) {
        std::cout << "Nothing can be mended without a decision of a person.\n";
        return;
    }
    std::cout << "Running, in one transaction:\n";
    for (std::string const& sql : statements)
        std::cout << "    " << displayText(sql) << ";\n";
    std::cout << std::flush;
    UndoStore undo(database);
    undo.keepDatabase("check --mend", "");  // only the statements tell what they leave
    std::string content;
    try {
        content = mend(statements);
    } catch (Failure const&) {
        if (guard.hasRefused())
            throw Failure("somebody else wrote to the database meanwhile; nothing is written");
        throw;
    }
    undo.confirm(content);
    printWritten("Written, and flushed to the disk; \"channellist undo\" takes it back.");
}

int run(std::string const& database, Options const& options) {
    severityOf(options.failOn);
    auto const seconds = wholeNumber(options.seconds);
    if (!seconds || *seconds < 1 || *seconds > 86400)
        throw Failure("--seconds needs a number from 1 to 86400", kUsage);
    TimeLimit::set(static_cast<int>(*seconds));
    Findings findings;
    try {
        Session const session(database, options.mend ? Access::Write : Access::Read,
                              Ott::IfReadable);
        CommitGuard const guard;
        findings = look(session);
        TimeLimit::finish();
        print(findings, options);
        if (options.mend)
            mendThem(database, findings, guard);
    } catch (Damaged const& damaged) {
        findings = {damagedFile(database, damaged.what())};
        TimeLimit::finish();
        print(findings, options);
    } catch (Failure const& failure) {
        if (!options.json || !findings.empty())
            throw;
        findings = {{"file", Severity::Edits, "file", failure.what(), "nothing is shown of it",
                     decision("give the path of a channel database that can be read")}};
        print(findings, options);
    }
    return codeFor(findings, options);
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
        .flag("--mend", options->mend,
              "run the ways out that are certain, and keep a copy for undo")
        .excludes("--mend", "--json")
        .footer(
            "Without --mend it writes nothing. Edits, and every way out that is shown, are tried "
            "on\n"
            "copies in memory. Findings that another one explains are counted under it. The exit\n"
            "code is 1 when something is found.\n"
            "Examples:\n"
            "  channellist check\n"
            "  channellist check --fail-on tuning\n"
            "  channellist check --db copy-of-servicelist.db --json | jq '.[].row'")
        .action([options](std::string const& database) { return run(database, *options); });
}

}  // namespace tool
