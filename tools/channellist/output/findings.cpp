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

using Counts = std::map<std::string, int>;          // of findings, by their rules
using Causes = std::map<std::string, std::string>;  // the rules that explain others

Counts countRules(Findings const& findings) {
    Counts counts;
    for (Finding const& finding : findings)
        ++counts[finding.rule];
    return counts;
}

Causes causesOf(Findings const& findings) {
    Causes causes;
    for (Finding const& finding : findings)
        if (!finding.cause.empty())
            causes.emplace(finding.rule, finding.cause);
    return causes;
}

// "FavoriteItem 1, 2, 3, 4, 5 and 7 more": a row's name may hold as many keys as a table.
std::string withFewKeys(std::string const& row) {
    constexpr int kMostKeys = 5;
    auto end = std::string::npos;
    int keys = 1;
    for (auto at = row.find(", "); at != std::string::npos; at = row.find(", ", at + 1))
        if (++keys == kMostKeys + 1)
            end = at;
    return end == std::string::npos
               ? row
               : row.substr(0, end) + " and " + std::to_string(keys - kMostKeys) + " more";
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
    std::cout << text(withFewKeys(finding.row)) << ": " << text(finding.what) << "\n    "
              << text(finding.viewer) << "\n    To mend it: " << text(finding.mend.text()) << "\n";
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
    Causes const causes = all ? Causes() : causesOf(findings);
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

std::string countOf(Findings const& findings) {
    if (findings.empty())
        return "No findings.";
    return std::to_string(findings.size()) + (findings.size() == 1 ? " finding." : " findings.");
}

void printFindingsJson(Findings const& findings) {
    Json list = Json::array();
    for (Finding const& finding : findings) {
        list.push_back({{"rule", finding.rule},
                        {"severity", wordFor(finding.severity)},
                        {"row", finding.row},
                        {"what", finding.what},
                        {"viewer", finding.viewer},
                        {"mend", finding.mend.text()},
                        {"statements", finding.mend.sql},
                        {"certain", finding.mend.isCertain()},
                        {"cause", finding.cause.empty() ? Json() : Json(finding.cause)}});
    }
    printJson(list);
}

}  // namespace tool
