#include "lists/operations.h"

#include <algorithm>
#include <functional>

#include "database/list_naming.h"
#include "failure.h"
#include "lists/meant_entries.h"
#include "services/providers.h"
#include "text/folded_text.h"
#include "text/json_text.h"
#include "text/near_names.h"

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
                           {"restore", Verb::Restore, nullptr},
                           {"swap", Verb::Swap, nullptr},
                           {"sort", Verb::Sort, nullptr},
                           {"copy", Verb::Copy, "at"}};

[[noreturn]] void refuse(std::string const& sentence) {
    throw Failure(sentence + "; \"channellist edit --help\" shows examples", kUsage);
}

// Reads the words one after the other.
class Parser {
  public:
    Parser(std::vector<std::string> const& words, std::string const& list)
        : words_(words), list_(list) {}

    std::vector<Operation> run() {
        std::vector<Operation> operations;
        while (next_ < words_.size())
            operations.push_back(readOne());
        return operations;
    }

  private:
    Word const* verbAt(std::size_t place) const {
        auto const* const verb = std::find_if(
            std::begin(kWords), std::end(kWords),
            [&](Word const& each) { return place < words_.size() && words_[place] == each.text; });
        return verb == std::end(kWords) ? nullptr : verb;
    }

    std::string take(std::string const& verb, char const* what) {
        if (next_ == words_.size())
            refuse(verb + " needs " + what);
        return words_[next_++];
    }

    bool takeWord(char const* word) {
        bool const isNext = next_ < words_.size() && words_[next_] == word;
        next_ += isNext ? 1 : 0;
        return isNext;
    }

    void readNumber(Word const& verb, Operation& operation) {
        if (!takeWord(verb.preposition))
            return;
        operation.number = next_ < words_.size() ? wholeNumber(words_[next_++]) : std::nullopt;
        if (!operation.number || *operation.number < 0)
            refuse(std::string(verb.preposition) + " needs a channel number");
    }

    void readSort(Operation& operation) {
        takeWord("by");
        operation.other = take("sort", "an order: name, number or provider");
        if (operation.other != "name" && operation.other != "number" &&
            operation.other != "provider")
            refuse("'" + operation.other + "' is none of name, number and provider to sort by");
        if (next_ < words_.size() && verbAt(next_) == nullptr)
            operation.service = words_[next_++];
    }

    Operation readOne() {
        Word const* const verb = verbAt(next_);
        if (verb == nullptr) {
            std::vector<std::string> const verbs = {"add",     "remove", "move", "hide",
                                                    "restore", "swap",   "sort", "copy"};
            refuse("'" + words_[next_] +
                   "' is none of add, remove, move, hide, restore, swap, sort and copy" +
                   didYouMean(words_[next_], verbs));
        }
        ++next_;
        Operation operation{verb->verb, "", std::nullopt, ""};
        if (verb->verb == Verb::Sort) {
            readSort(operation);
            return operation;
        }
        operation.service = take(verb->text, verb->verb == Verb::Copy ? "a list" : "a service");
        if (verb->verb == Verb::Swap)
            operation.other = take("swap", "two services");
        if (verb->verb == Verb::Copy && takeWord("to") && take("copy", "a list") != list_)
            refuse("copy writes to the list that is edited, " + list_);
        if (verb->preposition != nullptr)
            readNumber(*verb, operation);
        if (verb->verb == Verb::Move && !operation.number)
            refuse("move needs \"to\" and a channel number behind the service");
        return operation;
    }

    std::vector<std::string> const& words_;
    std::string const& list_;
    std::size_t next_ = 0;
};

using Places = std::vector<std::size_t>;

Places restOf(std::vector<Entry> const& entries, Operation const& operation,
              std::string const& listName) {
    if (!operation.service.empty())
        return findEntries(entries, operation.service, listName);
    Places shown;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (!entries[i].deleted)
            shown.push_back(i);
    return shown;
}

Entry const* heldBy(ListContent const& content, Entry const& entry) {
    auto const& entries = content.entries();
    auto const stored = std::find_if(entries.begin(), entries.end(), [&](Entry const& each) {
        return each.serviceId == entry.serviceId;
    });
    return stored == entries.end() ? nullptr : &*stored;
}

// Of several those that the list does not hold yet.
void addAll(std::vector<Entry> const& joining, std::optional<std::int64_t> number,
            ListContent& content) {
    Entry const* held = nullptr;
    bool isAdded = false;
    for (Entry entry : joining) {
        Entry const* const stored = heldBy(content, entry);
        held = stored != nullptr ? stored : held;
        if (stored != nullptr)
            continue;
        if (isAdded && number)
            number = content.numberAfter(*number);
        entry.deleted = false;
        content.add(std::move(entry), number);
        isAdded = true;
    }
    if (!isAdded && held != nullptr) {
        throw Failure(content.listName() + " already holds " + described(*held) +
                      (held->deleted ? "; restore it" : ""));
    }
}

void add(Operation const& operation, Material const& material, ListContent& content) {
    std::vector<Entry> joining;
    for (std::size_t const place :
         findEntries(material.all, operation.service, "the list of all services"))
        joining.push_back(material.all[place]);
    addAll(joining, operation.number, content);
}

// The shown entries in the order of their numbers.
void copy(Operation const& operation, Material const& material, ListContent& content) {
    std::vector<Entry> joining;
    for (Entry const& entry : material.copied.at(operation.service))
        if (!entry.deleted)
            joining.push_back(entry);
    std::stable_sort(joining.begin(), joining.end(),
                     [](Entry const& a, Entry const& b) { return a.number < b.number; });
    addAll(joining, operation.number, content);
}

void sort(Operation const& operation, Material const& material, ListContent& content) {
    std::vector<Entry> const& entries = content.entries();
    std::map<unsigned int, std::int64_t> numbers;
    for (Entry const& entry : material.all)
        numbers.emplace(entry.serviceId, entry.number.value_or(0));
    using Key = std::pair<std::int64_t, std::string>;
    std::vector<std::pair<Key, std::size_t>> keyed;
    for (std::size_t const place : restOf(entries, operation, content.listName())) {
        unsigned int const id = entries[place].serviceId;
        auto const number = numbers.find(id);
        auto const provider = material.providers.find(id);
        Key key(0, folded(entries[place].name));
        if (operation.other == "number")
            key = {number == numbers.end() ? 0 : number->second, ""};
        else if (operation.other == "provider")
            key = {0, provider == material.providers.end() ? "" : folded(provider->second)};
        keyed.emplace_back(std::move(key), place);
    }
    std::stable_sort(keyed.begin(), keyed.end(), [&](auto const& a, auto const& b) {
        return std::pair(a.first, entries[a.second].number) <
               std::pair(b.first, entries[b.second].number);
    });
    Places order;
    for (auto const& each : keyed)
        order.push_back(each.second);
    content.order(order);
}

void applyToBlock(Operation const& operation, ListContent& content) {
    Places places = findEntries(content.entries(), operation.service, content.listName(),
                                operation.verb == Verb::Restore);
    if (operation.verb == Verb::Move)
        content.moveAll(places, *operation.number);
    if (operation.verb == Verb::Remove)
        std::sort(places.begin(), places.end(), std::greater<>());
    for (std::size_t const place : places)
        if (operation.verb == Verb::Remove)
            content.remove(place);
        else if (operation.verb == Verb::Hide)
            content.hide(place);
        else if (operation.verb == Verb::Restore)
            content.restore(place);
}

void applyOne(Operation const& operation, Material const& material, ListContent& content) {
    auto const placeOf = [&](std::string const& word) {
        return findEntry(content.entries(), word, content.listName());
    };
    switch (operation.verb) {
        case Verb::Add:
            add(operation, material, content);
            break;
        case Verb::Copy:
            copy(operation, material, content);
            break;
        case Verb::Sort:
            sort(operation, material, content);
            break;
        case Verb::Swap:
            content.swap(placeOf(operation.service), placeOf(operation.other));
            break;
        case Verb::Remove:
        case Verb::Move:
        case Verb::Hide:
        case Verb::Restore:
            applyToBlock(operation, content);
            break;
    }
}

}  // namespace

std::vector<Operation> parseOperations(std::vector<std::string> const& words,
                                       std::string const& list) {
    return Parser(words, list).run();
}

Material gather(std::vector<Operation> const& operations) {
    Material material;
    for (Operation const& each : operations) {
        bool const needsAll = each.verb == Verb::Add || each.other == "number";
        if (needsAll && material.all.empty())
            material.all = readEntries(allServicesList().uuid).entries;
        if (each.verb == Verb::Copy)
            material.copied[each.service] = readEntries(findList(each.service).uuid).entries;
        if (each.verb == Verb::Sort && each.other == "provider")
            material.providers = readProviders();
    }
    return material;
}

void apply(std::vector<Operation> const& operations, Material const& material,
           ListContent& content) {
    for (Operation const& operation : operations)
        applyOne(operation, material, content);
}

}  // namespace channel_lists
