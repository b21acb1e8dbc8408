// The operations of an edit, a word a line.
#include <cstdint>
#include <sstream>

#include "failure.h"
#include "fuzz_lists.h"
#include "lists/operations.h"

using namespace channel_lists;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::istringstream text(std::string(reinterpret_cast<char const*>(data), size));
    std::vector<std::string> words;
    for (std::string word; std::getline(text, word);)
        words.push_back(word);
    std::vector<Entry> const stored = fuzz::storedEntries();
    ListContent content("FAV1", stored, fuzz::reservedNumbers());
    try {
        std::vector<Operation> const operations = parseOperations(words, "FAV1");
        Material material{fuzz::allEntries(), {}, {{1, "ARD"}, {4, "ZDF"}}};
        for (Operation const& each : operations)
            material.copied[each.service] = material.all;
        apply(operations, material, content);
        fuzz::expectSound(stored, content.entries());
    } catch (Failure const&) {
        return 0;
    }
    return 0;
}
