#include "lists/operations.h"

#include <algorithm>

#include "failure.h"
#include "text/json_text.h"

namespace channel_lists {
namespace {

struct Word {
    char const* text;
    Verb verb;
    char const* preposition;  // in front of a number; null without one
};

constexpr Word kWords[] = {{"add", Verb::Add, "at"},
                           {"remove", Verb::Remove, nullptr},
                           {"move", Verb::Move, "to"},
                           {"hide", Verb::Hide, nullptr},
                           {"restore", Verb::Restore, nullptr}};

[[noreturn]] void refuse(std::string const& sentence) {
    throw Failure(sentence + "; \"channellist edit --help\" shows examples", kUsage);
}

// A number without sign.
std::optional<std::int64_t> readNumber(std::string const& text) {
    auto const number = wholeNumber(text);
    return number && *number >= 0 ? number : std::nullopt;
}

bool isMeant(Entry const& entry, std::string const& word) {
    if (auto const number = readNumber(word))
        return entry.number == *number;
    if (word.compare(0, 3, "id:") == 0) {
        auto const id = readNumber(word.substr(3));
        return id && entry.serviceId == *id;
    }
    return entry.name == word || (!word.empty() && entry.uuid == word);
}

std::string describe(Entry const& entry) {
    return "id:" + std::to_string(entry.serviceId) + " (" + entry.name + ", number " +
           numberText(entry) + (entry.deleted ? ", hidden)" : ")");
}

// Of a hidden and a shown entry that one word means, such as a number that both hold.
void keepOnly(bool hidden, std::vector<Entry> const& entries, std::vector<std::size_t>& found) {
    auto const isOther = [&](std::size_t i) { return entries[i].deleted != hidden; };
    if (!std::all_of(found.begin(), found.end(), isOther))
        found.erase(std::remove_if(found.begin(), found.end(), isOther), found.end());
}

void addService(Operation const& operation, std::vector<Entry> const& all, ListContent& content) {
    Entry entry = all[findEntry(all, operation.service, "the list of all services")];
    auto const& entries = content.entries();
    auto const stored = std::find_if(entries.begin(), entries.end(), [&](Entry const& each) {
        return each.serviceId == entry.serviceId;
    });
    if (stored != entries.end()) {
        throw Failure(content.listName() + " already holds " + describe(*stored) +
                      (stored->deleted ? "; restore it" : ""));
    }
    entry.deleted = false;
    content.add(std::move(entry), operation.number);
}

void applyOne(Operation const& operation, std::vector<Entry> const& all, ListContent& content) {
    if (operation.verb == Verb::Add) {
        addService(operation, all, content);
        return;
    }
    std::size_t const index = findEntry(content.entries(), operation.service, content.listName(),
                                        operation.verb == Verb::Restore);
    switch (operation.verb) {
        case Verb::Remove:
            content.remove(index);
            break;
        case Verb::Move:
            content.move(index, *operation.number);
            break;
        case Verb::Hide:
            content.hide(index);
            break;
        case Verb::Restore:
            content.restore(index);
            break;
        case Verb::Add:
            break;
    }
}

}  // namespace

std::vector<Operation> parseOperations(std::vector<std::string> const& words) {
    std::vector<Operation> operations;
    for (std::size_t i = 0; i < words.size();) {
        auto const word = std::find_if(std::begin(kWords), std::end(kWords),
                                       [&](Word const& each) { return words[i] == each.text; });
        if (word == std::end(kWords))
            refuse("'" + words[i] + "' is none of add, remove, move, hide and restore");
        if (++i == words.size())
            refuse(std::string(word->text) + " needs a service");
        Operation operation{word->verb, words[i++], std::nullopt};
        if (word->preposition != nullptr && i < words.size() && words[i] == word->preposition) {
            operation.number = i + 1 < words.size() ? readNumber(words[i + 1]) : std::nullopt;
            if (!operation.number)
                refuse(std::string(word->preposition) + " needs a channel number");
            i += 2;
        }
        if (word->verb == Verb::Move && !operation.number)
            refuse("move needs \"to\" and a channel number behind the service");
        operations.push_back(std::move(operation));
    }
    return operations;
}

std::size_t findEntry(std::vector<Entry> const& entries, std::string const& word,
                      std::string const& listName, bool hidden) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (isMeant(entries[i], word))
            found.push_back(i);
    keepOnly(hidden, entries, found);
    if (found.empty())
        throw Failure(listName + " holds no service '" + word + "'");
    if (found.size() > 1) {
        std::string candidates;
        for (std::size_t const i : found)
            candidates += (candidates.empty() ? "" : ", ") + describe(entries[i]);
        throw Failure("several services of " + listName + " are meant by '" + word +
                      "': " + candidates);
    }
    return found[0];
}

void apply(std::vector<Operation> const& operations, std::vector<Entry> const& all,
           ListContent& content) {
    for (Operation const& operation : operations)
        applyOne(operation, all, content);
}

}  // namespace channel_lists
