#include "disk_record.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <stdexcept>

namespace disk {
namespace {

constexpr int kMostFiles = 1024;
constexpr char kUnnamed[] = "unnamed-";
constexpr char kDescriptors[] = "/proc/self/fd/";

// How an operation stands in the log, its name and data behind it.
struct Header {
    Kind kind;
    std::uint32_t nameSize;
    std::uint64_t offset;
    std::uint64_t dataSize;
};

template <typename Function>
Function* real(char const* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool writeWhole(int file, std::string const& bytes) {
    static auto* const write = real<ssize_t(int, void const*, size_t)>("write");
    return write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

// One write at the end of the log, so that several processes can record.
void append(int log, Operation const& operation) {
    Header const header = {operation.kind, static_cast<std::uint32_t>(operation.file.size()),
                           operation.offset, operation.data.size()};
    std::string const bytes(reinterpret_cast<char const*>(&header), sizeof header);
    if (!writeWhole(log, bytes + operation.file + operation.data))
        std::abort();
}

// The recorder of this process.
struct State {
    std::mutex mutex;
    std::string directory;  // empty: nothing is recorded
    int log = -1;
    bool recordsOutput = false;
    std::array<std::string, kMostFiles>
        files;  // by descriptor: "/" the directory, "" no file of it
};

State& state() {
    static State& state = *new State;  // descriptors are closed until the very end
    return state;
}

// The name of a file of the directory, "/" for itself, "" for anything else.
std::string nameIn(char const* path) {
    std::string const& directory = state().directory;
    std::string const text = path;
    if (directory.empty() || text.compare(0, directory.size(), directory) != 0)
        return "";
    if (text.size() == directory.size())
        return "/";
    std::string const name = text.substr(directory.size() + 1);
    if (name.empty())
        return "/";
    bool const isIndex = name.size() > 4 && name.compare(name.size() - 4, 4, "-shm") == 0;
    bool const isDeeper = name.find('/') != std::string::npos;
    return text[directory.size()] != '/' || isIndex || isDeeper ? "" : name;
}

std::string nameOf(int file) {
    return file >= 0 && file < kMostFiles ? state().files[static_cast<std::size_t>(file)] : "";
}

void begin(std::string const& directory, std::string const& log, bool recordsOutput) {
    State& self = state();
    self.log = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (self.log < 0)
        throw std::runtime_error("no log");
    self.recordsOutput = recordsOutput;
    self.directory = directory;
}

// A program into which the library was loaded is recorded from its start to its end.
struct Visitor {
    Visitor() {
        char const* const directory = std::getenv("DISK_DIRECTORY");
        char const* const log = std::getenv("DISK_LOG");
        if (directory != nullptr && log != nullptr)
            begin(directory, log, true);
    }
} visitor;

void record(Operation const& operation) {
    int const error = errno;
    append(state().log, operation);
    errno = error;
}

int opened(int file, char const* path, bool isNew) {
    std::lock_guard<std::mutex> const guard(state().mutex);
    std::string name = nameIn(path);
    if (file < 0 || file >= kMostFiles)
        return file;
    if (name == "/" && isNew)  // a file without a name, which linkat() gives it
        name = kUnnamed + std::to_string(file);
    state().files[static_cast<std::size_t>(file)] = name;
    if (isNew && !name.empty() && name != "/")
        record({Kind::Create, 0, name, ""});
    return file;
}

bool isAbsent(char const* path) {
    struct stat found;
    int const error = errno;
    bool const absent = stat(path, &found) != 0;
    errno = error;
    return absent;
}

ssize_t written(int file, void const* data, ssize_t size, off_t offset) {
    std::lock_guard<std::mutex> const guard(state().mutex);
    std::string const name = nameOf(file);
    if (size <= 0 || state().directory.empty())
        return size;
    std::string const bytes(static_cast<char const*>(data), static_cast<std::size_t>(size));
    if (file == STDOUT_FILENO && state().recordsOutput)
        record({Kind::Report, 0, "", bytes});
    else if (!name.empty())
        record({Kind::Write, static_cast<std::uint64_t>(offset), name, bytes});
    return size;
}

int changed(int code, Kind kind, std::string const& name, std::uint64_t size = 0,
            std::string const& to = "") {
    std::lock_guard<std::mutex> const guard(state().mutex);
    if (code == 0 && !name.empty())
        record({kind, size, name, to});
    return code;
}

// True when the flush is one that is recorded.
bool flushed(int file) {
    std::string const name = nameOf(file);
    changed(0, name == "/" ? Kind::FlushDirectory : Kind::Flush, name);
    return !name.empty();
}

}  // namespace

Recorder::Recorder(std::string const& directory, std::string const& log) {
    begin(directory, log, false);
}

Recorder::~Recorder() {
    close(state().log);
    std::lock_guard<std::mutex> const guard(state().mutex);
    state().directory.clear();
    state().files.fill("");
}

void report(std::string const& log, std::string const& text) {
    int const file = open(log.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    append(file, {Kind::Report, 0, "", text});
    close(file);
}

std::vector<Operation> operationsOf(std::string const& log) {
    std::ifstream input(log, std::ios::binary);
    std::vector<Operation> all;
    Header header;
    while (input.read(reinterpret_cast<char*>(&header), sizeof header)) {
        Operation operation = {header.kind, header.offset, std::string(header.nameSize, '\0'),
                               std::string(header.dataSize, '\0')};
        input.read(operation.file.data(), header.nameSize);
        input.read(operation.data.data(), static_cast<std::streamsize>(header.dataSize));
        all.push_back(std::move(operation));
    }
    return all;
}

}  // namespace disk

using namespace disk;

// What follows takes the place of the C library's functions, for SQLite and everybody else.

#define RECORDED_OPEN(function)                                                     \
    extern "C" int function(char const* path, int flags, ...) {                     \
        static auto* const call = real<int(char const*, int, ...)>(#function);      \
        va_list arguments;                                                          \
        va_start(arguments, flags);                                                 \
        bool const hasMode = (flags & (O_CREAT | O_TMPFILE)) != 0;                  \
        unsigned const mode = hasMode ? va_arg(arguments, unsigned) : 0;            \
        va_end(arguments);                                                          \
        bool const isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;                    \
        bool const isNew = isUnnamed || ((flags & O_CREAT) != 0 && isAbsent(path)); \
        return opened(call(path, flags, mode), path, isNew);                        \
    }
RECORDED_OPEN(open)
RECORDED_OPEN(open64)

extern "C" int close(int file) {
    static auto* const call = real<int(int)>("close");
    {
        std::lock_guard<std::mutex> const guard(state().mutex);
        if (file >= 0 && file < kMostFiles)
            state().files[static_cast<std::size_t>(file)].clear();
    }
    return call(file);
}

extern "C" ssize_t write(int file, void const* data, size_t size) {
    static auto* const call = real<ssize_t(int, void const*, size_t)>("write");
    off_t const offset = nameOf(file).empty() ? 0 : lseek(file, 0, SEEK_CUR);
    return written(file, data, call(file, data, size), offset);
}

extern "C" ssize_t pwrite(int file, void const* data, size_t size, off_t offset) {
    static auto* const call = real<ssize_t(int, void const*, size_t, off_t)>("pwrite");
    return written(file, data, call(file, data, size, offset), offset);
}

extern "C" ssize_t pwrite64(int file, void const* data, size_t size, off64_t offset) {
    static auto* const call = real<ssize_t(int, void const*, size_t, off64_t)>("pwrite64");
    return written(file, data, call(file, data, size, offset), static_cast<off_t>(offset));
}

extern "C" int ftruncate(int file, off_t size) {
    static auto* const call = real<int(int, off_t)>("ftruncate");
    return changed(call(file, size), Kind::Truncate, nameOf(file),
                   static_cast<std::uint64_t>(size));
}

extern "C" int ftruncate64(int file, off64_t size) {
    static auto* const call = real<int(int, off64_t)>("ftruncate64");
    return changed(call(file, size), Kind::Truncate, nameOf(file),
                   static_cast<std::uint64_t>(size));
}

extern "C" int rename(char const* from, char const* to) {
    static auto* const call = real<int(char const*, char const*)>("rename");
    return changed(call(from, to), Kind::Rename, nameIn(from), 0, nameIn(to));
}

extern "C" int linkat(int fromFolder, char const* from, int toFolder, char const* to, int flags) {
    static auto* const call = real<int(int, char const*, int, char const*, int)>("linkat");
    int const code = call(fromFolder, from, toFolder, to, flags);
    std::size_t const front = sizeof kDescriptors - 1;
    if (std::string(from).compare(0, front, kDescriptors) != 0)
        return code;
    auto& name = state().files.at(std::strtoul(from + front, nullptr, 10));
    if (changed(code, Kind::Rename, name, 0, nameIn(to)) == 0)
        name = nameIn(to);
    return code;
}

extern "C" int unlink(char const* path) {
    static auto* const call = real<int(char const*)>("unlink");
    return changed(call(path), Kind::Unlink, nameIn(path));
}

extern "C" int fsync(int file) {
    static auto* const call = real<int(int)>("fsync");
    return flushed(file) ? 0 : call(file);
}

extern "C" int fdatasync(int file) {
    static auto* const call = real<int(int)>("fdatasync");
    return flushed(file) ? 0 : call(file);
}

extern "C" void sync() {
    static auto* const call = real<void()>("sync");
    if (state().directory.empty())
        return call();
    changed(0, Kind::FlushAll, "/");
}
