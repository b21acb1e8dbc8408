#include "editing/text_edit.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include "database/frozen_database.h"
#include "editing/question.h"
#include "failure.h"
#include "lists/list_csv.h"
#include "lists/text_order.h"
#include "lists/text_services.h"
#include "text/display_text.h"

namespace tool {
namespace {

constexpr char kRemark[] = "#! ";
constexpr int kMostRounds = 10;  // of an editor that nobody sits at

ListText parsed(std::string const& text) { return isCsv(text) ? parseCsv(text) : parseList(text); }

TextOrder orderOf(Sight const& sight, ListText const& text) {
    return orderByText(sight.seen.list, sight.seen.entries, sight.joining, sight.seen.reserved,
                       text);
}

std::vector<Entry> accept(TextOrder&& order) {
    for (std::string const& note : order.notes)
        std::cerr << "channellist: " << displayText(note) << "\n";
    return std::move(order.entries);
}

TextServices servicesIn(Sight const& sight) { return {sight.seen.entries, sight.joining}; }

bool hasMissing(Sight const& sight, ListText const& text) {
    TextServices const services = servicesIn(sight);
    return std::any_of(text.lines.begin(), text.lines.end(),
                       [&](TextLine const& line) { return services.hasNone(line); });
}

std::string wordOf(TextLine const& line) {
    if (!line.name.empty() || !line.triplet.empty())
        return line.name.empty() ? line.triplet : line.name;
    return "id:" + std::to_string(line.key.value_or(0));
}

void leaveOutMissing(Sight const& sight, std::string const& source, ListText& text) {
    TextServices const services = servicesIn(sight);
    auto const isMissing = [&](TextLine const& line) {
        bool const isNone = services.hasNone(line);
        if (isNone)
            std::cerr << "channellist: " << displayText(source) << ":" << line.line
                      << ": left out: the database has no service for '"
                      << displayText(wordOf(line)) << "'\n";
        return isNone;
    };
    text.lines.erase(std::remove_if(text.lines.begin(), text.lines.end(), isMissing),
                     text.lines.end());
}

// Without those of an earlier round.
std::string withoutRemarks(std::string const& text) {
    std::istringstream lines(text);
    std::string kept;
    for (std::string line; std::getline(lines, line);)
        if (line.compare(0, sizeof kRemark - 1, kRemark) != 0)
            kept += line + "\n";
    return kept;
}

// Each above the line that it tells of; one of line 0 on top.
std::string withRemarks(std::string const& text, std::vector<TextError> const& remarks) {
    std::string marked;
    int count = 0;
    auto const add = [&] {
        for (TextError const& remark : remarks)
            if (remark.line == count)
                marked += kRemark + remark.sentence + "\n";
    };
    add();
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line); marked += line + "\n") {
        ++count;
        add();
    }
    return marked;
}

// The line of the text that means the entry; 0 for none.
int lineOf(Entry const& entry, ListText const& text) {
    auto const found = std::find_if(
        text.lines.begin(), text.lines.end(),
        [&](TextLine const& line) { return line.key == std::int64_t{entry.serviceId}; });
    return found == text.lines.end() ? 0 : found->line;
}

std::vector<Entry> byNumber(std::vector<Entry> entries) {
    std::stable_sort(entries.begin(), entries.end(), [](Entry const& a, Entry const& b) {
        return a.number && (!b.number || *a.number < *b.number);
    });
    return entries;
}

std::string asComment(std::string const& text) {
    std::istringstream lines(text);
    std::string comment = "\n# Your text as you left it:\n";
    for (std::string line; std::getline(lines, line);)
        comment += "#  " + line + "\n";
    return comment;
}

}  // namespace

Sight look(std::string const& word) {
    FrozenDatabase const frozen;
    Sight sight;
    sight.seen = seeList(findList(word));
    if (sight.seen.list.favIndex != 0)
        sight.joining = readEntries(allServicesList().uuid).entries;
    return sight;
}

std::string readText(std::string const& file) {
    std::ifstream stored;
    if (file != "-")
        stored.open(file);
    std::istream& in = file == "-" ? std::cin : stored;
    std::ostringstream text;
    if (in.peek() != std::istream::traits_type::eof())
        text << in.rdbuf();
    if (in.bad() || text.bad() || (file != "-" && !stored.is_open()))
        throw Failure("cannot read " + file + ": " + std::strerror(errno));
    return text.str();
}

std::vector<Entry> contentOf(Sight const& sight, std::string const& text, std::string const& source,
                             Allowed const& allowed) {
    ListText lines = parsed(text);
    if (allowed.missing)
        leaveOutMissing(sight, source, lines);
    if (lines.lines.empty() && lines.errors.empty() && !sight.seen.entries.empty() &&
        !allowed.empty) {
        throw Failure(
            source +
            ": no service is named; nothing is written (--empty takes all out of FAV1 to FAV4)");
    }
    TextOrder order = orderOf(sight, lines);
    if (!order.errors.empty())
        throw Failure(
            "nothing is written:\n" + explainErrors(source, order.errors) +
            (hasMissing(sight, lines) ? "\n--skip-missing leaves out what no service fits" : ""));
    return accept(std::move(order));
}

std::optional<std::vector<Entry>> EditorSession::edit(Sight const& sight) {
    return rounds(sight, formatList(displayName(sight.seen.list), sight.seen.entries));
}

std::optional<std::vector<Entry>> EditorSession::rounds(Sight const& sight, std::string shown) {
    for (int round = 1;; ++round) {
        std::string const edited = file_.edit(shown);
        if (round == 1 && (edited == shown || edited.empty())) {
            isLeftAlone_ = edited == shown;
            return std::nullopt;
        }
        text_ = withoutRemarks(edited);
        TextOrder order = orderOf(sight, parsed(text_));
        if (order.errors.empty())
            return accept(std::move(order));
        bool const isLeft = edited == shown || edited.empty();
        bool const sitsNobody = !canAsk() || file_.cameBackAtOnce();
        if (isLeft || (round >= kMostRounds && sitsNobody))
            throw Failure("nothing is written:\n" + explainErrors("text", order.errors));
        order.errors.insert(order.errors.begin(),
                            {0, "Nothing is written yet; errors stand below."});
        shown = withRemarks(text_, order.errors);
    }
}

// Both changes as one list, with remarks where they are at odds, and the user's own text below.
std::optional<std::vector<Entry>> EditorSession::resolve(Sight const& now, Merge const& merge) {
    std::string const text =
        formatList(displayName(now.seen.list), byNumber(merge.entries)) + asComment(text_);
    ListText const lines = parseList(text);
    std::vector<TextError> remarks = {
        {0, "The list has changed meanwhile. Save the text as you want the list."}};
    for (Conflict const& conflict : merge.conflicts)
        remarks.push_back(
            {lineOf(conflict.base, lines),
             conflict.base.name + ": others " + conflict.theirs + "; you " + conflict.mine});
    return rounds(now, withRemarks(text, remarks));
}

void EditorSession::done() {
    if (isLeftAlone_ && file_.cameBackAtOnce()) {
        std::cerr
            << "channellist: the editor came back at once and changed nothing; should it still"
               " be open, save there and take the file with \"edit --from\"\n";
        return;
    }
    file_.remove();
}

}  // namespace tool
