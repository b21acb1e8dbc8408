#include "output/findings.h"

#include <algorithm>
#include <iostream>
#include <map>

#include "output/print_rows.h"
#include "output/terminal.h"
#include "text/display_text.h"
#include "text/json_text.h"

namespace tool {
namespace {

constexpr int kMostShown = 10;        // of a rule
constexpr std::size_t kWidest = 200;  // of a text, in characters

struct SeverityWord {
    Severity severity;
    Style style;
    char const* word;
    char const* heading;
};

constexpr SeverityWord kWords[] = {
    {Severity::Edits, Style::Red, "edits", "Breaks edits, or everything"},
    {Severity::Seen, Style::Red, "seen", "Breaks what a viewer sees"},
    {Severity::Tuning, Style::Yellow, "tuning", "Breaks tuning"},
    {Severity::Slow, Style::Bold, "slow", "Slows"},
    {Severity::Odd, Style::Bold, "odd", "Looks odd"},
};

struct Consequence {
    char const* cause;
    char const* rule;
};

// A rule's findings that another rule's explain.
constexpr Consequence kConsequences[] = {
    {"fav-lists", "fav-order"},
    {"fav-lists", "fav-tag"},
    {"fav-order", "fav-tag"},
    {"endless", "unread"},
    {"endless", "edit"},
    {"key", "edit"},
    {"key", "fav-tag"},
    {"key", "dangling-item"},
    {"key", "service-in-no-list"},
    {"key", "service-not-in-all"},
    {"all-list", "dangling-item"},
    {"all-list", "service-not-in-all"},
    {"all-list", "service-in-no-list"},
    {"missing-table", "unread"},
    {"missing-table", "service-query"},
    {"missing-column", "unread"},
    {"missing-column", "service-query"},
    {"missing-table", "edit"},
    {"missing-column", "edit"},
    {"damage", "unread"},
    {"damage", "edit"},
    {"default", "edit"},
    {"view-for-table", "default"},
    {"view-for-table", "edit"},
    {"view-for-table", "unread"},
    {"view-for-table", "service-query"},
    {"service-query", "edit"},
};

using Counts = std::map<std::string, int>;          // of findings, by their rules
using Causes = std::map<std::string, std::string>;  // the rules that explain others

Counts countRules(Findings const& findings) {
    Counts counts;
    for (Finding const& finding : findings)
        ++counts[finding.rule];
    return counts;
}

Causes causesOf(Counts const& counts) {
    Causes causes;
    for (Consequence const& each : kConsequences)
        if (counts.count(each.cause) != 0 && counts.count(each.rule) != 0)
            causes.emplace(each.rule, each.cause);
    return causes;
}

std::string cut(std::string const& text) {
    std::string shown = displayText(text);
    if (shown.size() <= kWidest)
        return shown;
    std::size_t end = kWidest;
    while ((static_cast<unsigned char>(shown[end]) & 0xC0) == 0x80)
        --end;
    return shown.substr(0, end) + "...";
}

void print(Finding const& finding, bool all) {
    auto const text = [all](std::string const& words) {
        return all ? displayText(words) : cut(words);
    };
    std::cout << text(finding.row) << ": " << text(finding.what) << "\n    " << text(finding.viewer)
              << "\n    To mend it: " << text(finding.mend) << "\n";
}

}  // namespace

std::string wordFor(Severity severity) { return kWords[static_cast<std::size_t>(severity)].word; }

Severity severityOf(std::string const& word) {
    for (SeverityWord const& each : kWords)
        if (word == each.word)
            return each.severity;
    throw Failure("'" + word + "' is none of edits, seen, tuning, slow and odd", kUsage);
}

void printFindings(Findings findings, bool all) {
    std::stable_sort(findings.begin(), findings.end(),
                     [](Finding const& a, Finding const& b) { return a.severity < b.severity; });
    Counts const counts = countRules(findings);
    Causes const causes = all ? Causes() : causesOf(counts);
    std::map<std::string, int> shown;
    bool isCut = !causes.empty();
    auto const* heading = "";
    for (std::size_t i = 0; i < findings.size(); ++i) {
        Finding const& finding = findings[i];
        SeverityWord const& own = kWords[static_cast<std::size_t>(finding.severity)];
        if (causes.count(finding.rule) != 0 || (++shown[finding.rule] > kMostShown && !all))
            continue;
        if (std::string(heading) != own.heading)
            std::cout << styled(own.style, own.heading + std::string(":")) << "\n";
        heading = own.heading;
        print(finding, all);
        for (auto const& [rule, cause] : causes)
            if (cause == finding.rule && shown[finding.rule] == 1)
                std::cout << "    " << counts.at(rule) << " of " << rule << " may follow from it\n";
    }
    for (auto const& [rule, count] : shown) {
        if (count <= kMostShown || all)
            continue;
        std::cout << "and " << count - kMostShown << " more of " << rule << "\n";
        isCut = true;
    }
    if (isCut)
        std::cout << "--all shows every finding.\n";
}

void printFindingsJson(Findings const& findings) {
    Causes const causes = causesOf(countRules(findings));
    Json list = Json::array();
    for (Finding const& finding : findings) {
        auto const cause = causes.find(finding.rule);
        list.push_back({{"rule", finding.rule},
                        {"severity", wordFor(finding.severity)},
                        {"row", finding.row},
                        {"what", finding.what},
                        {"viewer", finding.viewer},
                        {"mend", finding.mend},
                        {"cause", cause == causes.end() ? Json() : Json(cause->second)}});
    }
    printJson(list);
}

}  // namespace tool
