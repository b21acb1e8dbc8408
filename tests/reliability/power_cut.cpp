#include "power_cut.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unordered_set>

namespace disk {
namespace {

constexpr std::size_t kSector = 512;

void put(std::string const& data, std::size_t from, std::size_t size, std::size_t offset,
         std::string& bytes) {
    bytes.replace(offset + from, std::min(size, bytes.size() - offset - from), data, from, size);
}

// Some sectors of a write, in a file that is long enough for all of it or not.
void applyTorn(Operation const& write, std::string& bytes, std::mt19937_64& random) {
    auto const offset = static_cast<std::size_t>(write.offset);
    std::size_t const end = offset + write.data.size();
    if (bytes.size() < end)
        bytes.resize(end, random() % 2 == 0 ? '\0' : '\xa5');
    for (std::size_t from = 0; from < write.data.size();) {
        std::size_t const size =
            std::min(kSector - (offset + from) % kSector, write.data.size() - from);
        if (random() % 2 == 0)
            put(write.data, from, size, offset, bytes);
        from += size;
    }
}

}  // namespace

void apply(Operation const& operation, std::string& bytes) {
    auto const offset = static_cast<std::size_t>(operation.offset);
    if (operation.kind == Kind::Truncate) {
        bytes.resize(offset);
        return;
    }
    if (bytes.size() < offset + operation.data.size())
        bytes.resize(offset + operation.data.size());
    put(operation.data, 0, operation.data.size(), offset, bytes);
}

Disk::Disk(Files const& files) {
    for (auto const& [name, bytes] : files) {
        names_[name].contents = {static_cast<int>(contents_.size())};
        contents_.push_back({bytes, {}});
    }
}

int Disk::current(std::string const& name) const {
    auto const found = names_.find(name);
    return found == names_.end() ? kNone : found->second.contents.back();
}

void Disk::lead(std::string const& name, int content) {
    auto const [entry, isNew] = names_.try_emplace(name);
    if (isNew)
        entry->second.contents.push_back(kNone);
    entry->second.contents.push_back(content);
}

void Disk::flush(Content& content) {
    for (Operation const& operation : content.pending)
        apply(operation, content.certain);
    content.pending.clear();
}

void Disk::flushNames() {
    for (auto& [name, led] : names_)
        led.contents.erase(led.contents.begin(), led.contents.end() - 1);
}

void Disk::run(Operation const& operation) {
    int const content = current(operation.file);
    switch (operation.kind) {
        case Kind::Create:
            lead(operation.file, static_cast<int>(contents_.size()));
            contents_.emplace_back();
            break;
        case Kind::Write:
        case Kind::Truncate:
            if (content != kNone)
                contents_[static_cast<std::size_t>(content)].pending.push_back(operation);
            break;
        case Kind::Rename:
            lead(operation.data, content);
            lead(operation.file, kNone);
            break;
        case Kind::Unlink:
            lead(operation.file, kNone);
            break;
        case Kind::Flush:
            if (content != kNone)
                flush(contents_[static_cast<std::size_t>(content)]);
            break;
        case Kind::FlushDirectory:
            flushNames();
            break;
        case Kind::FlushAll:
            flushNames();
            for (Content& each : contents_)
                flush(each);
            break;
        case Kind::Report:
            break;
    }
}

Files Disk::afterCut(std::mt19937_64& random) const {
    std::size_t const kept = random() % 5;  // of four operations
    std::map<int, std::string> found;
    Files files;
    for (auto const& [name, led] : names_) {
        int const content = led.contents[random() % led.contents.size()];
        if (content == kNone)
            continue;
        auto const [bytes, isNew] = found.try_emplace(content);
        if (isNew) {
            Content const& from = contents_[static_cast<std::size_t>(content)];
            bytes->second = from.certain;
            std::vector<Operation const*> arriving;
            for (Operation const& operation : from.pending)
                if (random() % 4 < kept)
                    arriving.push_back(&operation);
            if (random() % 2 == 0)
                std::shuffle(arriving.begin(), arriving.end(), random);
            for (Operation const* operation : arriving)
                if (operation->kind == Kind::Write && random() % 3 == 0)
                    applyTorn(*operation, bytes->second, random);
                else
                    apply(*operation, bytes->second);
        }
        files[name] = bytes->second;
    }
    return files;
}

Files filesIn(std::string const& directory) {
    Files files;
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
        std::ostringstream bytes;
        bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        files[entry.path().filename()] = bytes.str();
    }
    return files;
}

void putFiles(std::string const& directory, Files const& files) {
    for (auto const& entry : std::filesystem::directory_iterator(directory))
        std::filesystem::remove(entry.path());
    for (auto const& [name, bytes] : files)
        std::ofstream(directory + "/" + name, std::ios::binary) << bytes;
}

Outcome cutEverywhere(Recording const& recording, unsigned cuts, bool withFlushes,
                      std::uint64_t seed,
                      std::function<std::string(Files const&, std::size_t reports)> const& wrong) {
    Disk disk(recording.before);
    std::mt19937_64 random(seed);
    Outcome outcome;
    std::size_t reports = 0;
    auto const each = static_cast<unsigned>(cuts / recording.operations.size() + 1);
    std::unordered_set<std::size_t> seen;
    for (Operation const& operation : recording.operations) {
        for (unsigned i = 0; i < each; ++i) {
            Files const files = disk.afterCut(random);
            ++outcome.cuts;
            std::string image = std::to_string(reports);
            for (auto const& [name, bytes] : files)
                image += name + bytes;
            if (!seen.insert(std::hash<std::string>()(image)).second)
                continue;
            std::string const fault = wrong(files, reports);
            outcome.faults += fault.empty() ? 0 : 1;
            if (!fault.empty() && outcome.firstFault.empty())
                outcome.firstFault = "seed " + std::to_string(seed) + ": " + fault;
        }
        bool const isFlush =
            operation.kind == Kind::Flush || operation.kind == Kind::FlushDirectory;
        if (withFlushes || !isFlush)
            disk.run(operation);
        reports += operation.kind == Kind::Report ? 1 : 0;
    }
    outcome.disks = seen.size();
    return outcome;
}

std::uint64_t seedOf(char const* variable) {
    char const* const seed = std::getenv(variable);
    return seed != nullptr ? std::strtoull(seed, nullptr, 10) : std::random_device()();
}

}  // namespace disk
