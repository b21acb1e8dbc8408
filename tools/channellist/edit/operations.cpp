#include "edit/operations.h"

#include <algorithm>

#include "failure.h"
#include "output/json_text.h"

namespace tool {
namespace {

struct Word {
    const char* text;
    Verb verb;
    const char* preposition;  // in front of a number; null without one
};

constexpr Word kWords[] = {{"add", Verb::Add, "at"},
                           {"remove", Verb::Remove, nullptr},
                           {"move", Verb::Move, "to"},
                           {"hide", Verb::Hide, nullptr},
                           {"restore", Verb::Restore, nullptr}};

[[noreturn]] void refuse(const std::string& sentence) {
    throw Failure(sentence + "; \"channellist edit --help\" shows examples", kUsage);
}

// A number without sign.
std::optional<std::int64_t> readNumber(const std::string& text) {
    const auto number = wholeNumber(text);
    return number && *number >= 0 ? number : std::nullopt;
}

bool isMeant(const Entry& entry, const std::string& word) {
    if (const auto number = readNumber(word)) {
        return entry.number == *number;
    }
    if (word.compare(0, 3, "id:") == 0) {
        const auto id = readNumber(word.substr(3));
        return id && entry.serviceId == *id;
    }
    return entry.name == word || (!word.empty() && entry.uuid == word);
}

std::string describe(const Entry& entry) {
    return "id:" + std::to_string(entry.serviceId) + " (" + entry.name + ", number " +
           numberText(entry) + ")";
}

void addService(const Operation& operation, const std::vector<Entry>& all, ListContent& content) {
    Entry entry = all[findEntry(all, operation.service, "the list of all services")];
    const auto& entries = content.entries();
    const auto stored = std::find_if(entries.begin(), entries.end(), [&](const Entry& each) {
        return each.serviceId == entry.serviceId;
    });
    if (stored != entries.end()) {
        throw Failure(content.listName() + " already holds " + describe(*stored) +
                      (stored->deleted ? ", hidden: restore it" : ""));
    }
    entry.deleted = false;
    content.add(std::move(entry), operation.number);
}

void applyOne(const Operation& operation, const std::vector<Entry>& all, ListContent& content) {
    if (operation.verb == Verb::Add) {
        addService(operation, all, content);
        return;
    }
    const std::size_t index = findEntry(content.entries(), operation.service, content.listName());
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

std::vector<Operation> parseOperations(const std::vector<std::string>& words) {
    std::vector<Operation> operations;
    for (std::size_t i = 0; i < words.size();) {
        const auto word = std::find_if(std::begin(kWords), std::end(kWords),
                                       [&](const Word& each) { return words[i] == each.text; });
        if (word == std::end(kWords)) {
            refuse("'" + words[i] + "' is none of add, remove, move, hide and restore");
        }
        if (++i == words.size()) {
            refuse(std::string(word->text) + " needs a service");
        }
        Operation operation{word->verb, words[i++], std::nullopt};
        if (word->preposition != nullptr && i < words.size() && words[i] == word->preposition) {
            operation.number = i + 1 < words.size() ? readNumber(words[i + 1]) : std::nullopt;
            if (!operation.number) {
                refuse(std::string(word->preposition) + " needs a channel number");
            }
            i += 2;
        }
        if (word->verb == Verb::Move && !operation.number) {
            refuse("move needs \"to\" and a channel number behind the service");
        }
        operations.push_back(std::move(operation));
    }
    return operations;
}

std::size_t findEntry(const std::vector<Entry>& entries, const std::string& word,
                      const std::string& listName) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (isMeant(entries[i], word)) {
            found.push_back(i);
        }
    }
    if (found.empty()) {
        throw Failure(listName + " holds no service '" + word + "'");
    }
    if (found.size() > 1) {
        std::string candidates;
        for (const std::size_t i : found) {
            candidates += (candidates.empty() ? "" : ", ") + describe(entries[i]);
        }
        throw Failure("several services of " + listName + " are meant by '" + word +
                      "': " + candidates);
    }
    return found[0];
}

void apply(const std::vector<Operation>& operations, const std::vector<Entry>& all,
           ListContent& content) {
    for (const Operation& operation : operations) {
        applyOne(operation, all, content);
    }
}

}  // namespace tool
