#include <channel-database/database_content.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace channel_database {
namespace {

constexpr int kBusyTimeoutMilliseconds = 10000;
constexpr int kDefaultPageSize = 4096;
constexpr std::string_view kHeader("SQLite format 3\0", 16);

struct CloseConnection {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

struct FreeMemory {
    void operator()(unsigned char* memory) const { sqlite3_free(memory); }
};

[[noreturn]] void fail(std::string const& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

// Closes the descriptor, and removes the name that the file has until it is linked into place.
class UnlinkedFile {
  public:
    explicit UnlinkedFile(std::string const& path) {
        std::size_t const slash = path.rfind('/');
        folder_ = slash == std::string::npos ? "." : path.substr(0, slash + 1);
        descriptor_ = open(folder_.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
        name_ = "/proc/self/fd/" + std::to_string(descriptor_);
        isNamed_ = descriptor_ < 0 || access(name_.c_str(), F_OK) != 0;
        if (!isNamed_)
            return;
        if (descriptor_ >= 0)
            close(descriptor_);
        name_ = path + ".part-" + std::to_string(getpid());
        descriptor_ = open(name_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
        if (descriptor_ < 0)
            fail("cannot make " + path);
    }
    ~UnlinkedFile() {
        if (isNamed_)
            unlink(name_.c_str());
        close(descriptor_);
    }
    UnlinkedFile(UnlinkedFile const&) = delete;
    UnlinkedFile& operator=(UnlinkedFile const&) = delete;

    void write(unsigned char const* bytes, std::size_t count, std::string const& path) {
        while (count > 0) {
            ssize_t const written = ::write(descriptor_, bytes, count);
            if (written < 0 && errno != EINTR)
                fail("cannot write " + path);
            if (written > 0) {
                bytes += written;
                count -= static_cast<std::size_t>(written);
            }
        }
        if (fsync(descriptor_) != 0)
            fail("cannot write " + path);
    }

    void linkTo(std::string const& path) {
        if (linkat(AT_FDCWD, name_.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0)
            fail("cannot make " + path);
        if (!isFlushed())
            fail("cannot flush the name of " + path + " to the disk");
    }

  private:
    // The name. Who may not read the folder flushes the whole file system.
    bool isFlushed() const {
        int const folder = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0)
            return syncfs(descriptor_) == 0;
        bool const flushed = fsync(folder) == 0 || errno == EINVAL;  // some have nothing to flush
        close(folder);
        return flushed;
    }

    std::string folder_;
    std::string name_;
    int descriptor_ = -1;
    bool isNamed_ = false;
};

// The first read settles what a process that died has left: its journal or write-ahead log. What
// the connection writes is on the disk when it is committed, the removal of the journal included.
Connection openSettled(std::string const& path) {
    sqlite3* opened = nullptr;
    int const code = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    Connection connection(opened);
    if (code != SQLITE_OK)
        throw std::runtime_error("cannot open " + path + ": " + sqlite3_errmsg(opened));
    sqlite3_busy_timeout(opened, kBusyTimeoutMilliseconds);
    if (sqlite3_exec(opened, "PRAGMA synchronous = EXTRA; PRAGMA schema_version", nullptr, nullptr,
                     nullptr) != SQLITE_OK)
        throw std::runtime_error("cannot read " + path + ": " + sqlite3_errmsg(opened));
    return connection;
}

std::string setting(sqlite3* connection, char const* pragma) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(connection, pragma, -1, &statement, nullptr);
    auto const* value = sqlite3_step(statement) == SQLITE_ROW
                            ? reinterpret_cast<char const*>(sqlite3_column_text(statement, 0))
                            : nullptr;
    std::string text = value == nullptr ? "" : value;
    sqlite3_finalize(statement);
    return text;
}

int pageSizeOf(sqlite3* connection) {
    int const size = std::atoi(setting(connection, "PRAGMA page_size").c_str());
    return size == 0 ? kDefaultPageSize : size;
}

// Of what the connection last read.
unsigned int dataVersion(sqlite3* connection) {
    unsigned int version = 0;
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_DATA_VERSION, &version);
    return version;
}

// False, and nothing is written, when somebody has written to the target by the time that it is
// locked, since it had the version.
bool copyUnlessOvertaken(sqlite3* source, sqlite3* target, std::string const& path,
                         unsigned int version) {
    sqlite3_backup* const backup = sqlite3_backup_init(target, "main", source, "main");
    if (backup == nullptr)
        throw std::runtime_error("cannot write " + path + ": " + sqlite3_errmsg(target));
    int step = sqlite3_backup_step(backup, 0);  // takes the lock, and copies nothing
    bool const isOvertaken = step == SQLITE_OK && dataVersion(target) != version;
    bool const isGone = step == SQLITE_OK && isMoved(target);
    if (step == SQLITE_OK && !isOvertaken && !isGone)
        step = sqlite3_backup_step(backup, -1);
    int const end = sqlite3_backup_finish(backup);
    if (isGone)
        throw std::runtime_error(path + " was replaced or renamed meanwhile; nothing is written");
    if (isOvertaken)
        return false;
    if (step == SQLITE_BUSY || step == SQLITE_LOCKED)
        throw std::runtime_error(path + " is locked by another process; nothing is written");
    if (step != SQLITE_DONE || end != SQLITE_OK)
        throw std::runtime_error("cannot write " + path + ": " +
                                 sqlite3_errstr(step != SQLITE_DONE ? step : end));
    return true;
}

void copyContent(sqlite3* source, sqlite3* target, std::string const& path,
                 std::function<void()> const& beforeReplacing = {}) {
    constexpr int kMostTries = 20;
    for (int tries = 0; tries < kMostTries; ++tries) {
        unsigned int const version = dataVersion(target);
        if (beforeReplacing)
            beforeReplacing();
        if (copyUnlessOvertaken(source, target, path, version))
            return;
    }
    throw std::runtime_error("others write to " + path + " all the time; nothing is written");
}

// A whole database as the bytes of a file.
struct Image {
    std::unique_ptr<unsigned char, FreeMemory> bytes;
    sqlite3_int64 size = 0;
};

// Whatever the journal mode of the database is, the file is in the mode of the rollback journal: a
// file in WAL mode cannot be read where nothing can be written beside it.
Image imageOf(sqlite3* source, std::string const& path) {
    constexpr sqlite3_int64 kWriteVersion = 18;
    constexpr sqlite3_int64 kReadVersion = 19;
    constexpr unsigned char kRollbackJournal = 1;
    Image image;
    image.bytes.reset(sqlite3_serialize(source, "main", &image.size, 0));
    if (image.bytes == nullptr)
        throw std::runtime_error("cannot make " + path + ": " + sqlite3_errmsg(source));
    if (image.size > kReadVersion)
        image.bytes.get()[kWriteVersion] = image.bytes.get()[kReadVersion] = kRollbackJournal;
    return image;
}

// Where a database can be changed in ways that SQLite knows for files alone. A connection to it
// outlives its name.
class TemporaryFile {
  public:
    TemporaryFile() {
        char const* const folder = std::getenv("TMPDIR");
        name_ = std::string(folder == nullptr ? "/tmp" : folder) + "/channels-XXXXXX";
        int const descriptor = mkstemp(name_.data());
        if (descriptor < 0)
            fail("cannot make " + name_);
        close(descriptor);
    }
    ~TemporaryFile() { unlink(name_.c_str()); }
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;

    Connection open() const {
        sqlite3* opened = nullptr;
        sqlite3_open(name_.c_str(), &opened);
        sqlite3_exec(opened, "PRAGMA journal_mode = MEMORY; PRAGMA synchronous = OFF", nullptr,
                     nullptr, nullptr);
        return Connection(opened);
    }

  private:
    std::string name_;
};

// The content in pages of that size, into which SQLite brings no database in memory.
Connection inPagesOf(int size, Image image, std::string const& path) {
    sqlite3* opened = nullptr;
    sqlite3_open(":memory:", &opened);
    Connection const memory(opened);
    sqlite3_int64 const bytes = image.size;
    // It frees the bytes, whether it succeeds or not.
    if (sqlite3_deserialize(opened, "main", image.bytes.release(), bytes, bytes,
                            SQLITE_DESERIALIZE_FREEONCLOSE) != SQLITE_OK)
        throw std::runtime_error("cannot read what is to be written to " + path);
    TemporaryFile const file;
    Connection converted = file.open();
    std::string const convert = "PRAGMA page_size = " + std::to_string(size) + "; VACUUM";
    copyContent(memory.get(), converted.get(), path);
    if (sqlite3_exec(converted.get(), convert.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error("cannot write " + path + ": " + sqlite3_errmsg(converted.get()));
    return converted;
}

}  // namespace

bool isMoved(sqlite3* connection) {
    int moved = 0;
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void checkReplaceable(std::string const& path) {
    struct stat file;
    if (stat(path.c_str(), &file) != 0)
        fail("cannot replace " + path);
    if (!S_ISREG(file.st_mode))
        throw std::runtime_error(path + " is no regular file; it is left as it is");
    if (file.st_size == 0)
        return;
    char header[kHeader.size()] = {};
    std::ifstream(path, std::ios::binary).read(header, sizeof header);
    if (std::string_view(header, sizeof header) != kHeader)
        throw std::runtime_error(path + " is no SQLite database; it is left as it is");
}

int pageSize(std::string const& path) { return pageSizeOf(openSettled(path).get()); }

void replaceContent(sqlite3* source, std::string const& path,
                    std::function<void()> const& beforeReplacing) {
    Connection const target = openSettled(path);
    int const size = pageSizeOf(target.get());
    bool const isWal = setting(source, "PRAGMA journal_mode") == "wal";
    if (!isWal && size == pageSizeOf(source))
        return copyContent(source, target.get(), path, beforeReplacing);
    copyContent(inPagesOf(size, imageOf(source, path), path).get(), target.get(), path,
                beforeReplacing);
}

void writeNewFile(sqlite3* source, std::string const& path) {
    Image const image = imageOf(source, path);
    UnlinkedFile file(path);
    file.write(image.bytes.get(), static_cast<std::size_t>(image.size), path);
    file.linkTo(path);
}

void copyToNewFile(std::string const& path, std::string const& file) {
    writeNewFile(openSettled(path).get(), file);
}

}  // namespace channel_database
